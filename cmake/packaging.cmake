# What `cmake --install` and CPack produce: a Debian package of the Linux build. scripts/package makes the Windows packages.
if(WIN32)
    return()
endif()
include(GNUInstallDirs)

install(TARGETS halyrig32 halyrigctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS ShDfW2 LIBRARY DESTINATION lib/halyrig)
install(FILES ${CMAKE_SOURCE_DIR}/src/stand_in/Data/J_vars06.d DESTINATION lib/halyrig/Data)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/linux/halyrig.service ${CMAKE_SOURCE_DIR}/packaging/linux/halyrig-stream.service
    ${CMAKE_SOURCE_DIR}/packaging/linux/halyrig-record.service
    ${CMAKE_SOURCE_DIR}/packaging/linux/halyrig-page.service
    DESTINATION lib/systemd/user)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/completions/halyrigctl DESTINATION share/bash-completion/completions)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/linux/copyright ${CMAKE_SOURCE_DIR}/packaging/THIRD-PARTY.txt DESTINATION share/doc/halyrig)
install(FILES ${CMAKE_SOURCE_DIR}/demo/halyrig.xml DESTINATION share/doc/halyrig/examples)

# The user's texts as pages for a browser.
set(pages ${CMAKE_BINARY_DIR}/pages)
file(GLOB pictures CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/*.png)
foreach(name guide channels streams)
    add_custom_command(OUTPUT ${pages}/${name}.html
        COMMAND ${CMAKE_COMMAND} -E make_directory ${pages}
        COMMAND ${CMAKE_SOURCE_DIR}/docs/make_page ${CMAKE_SOURCE_DIR}/docs/${name}.md >${pages}/${name}.html
        DEPENDS ${CMAKE_SOURCE_DIR}/docs/make_page ${CMAKE_SOURCE_DIR}/docs/${name}.md ${pictures})
    set_property(GLOBAL APPEND PROPERTY package_files ${pages}/${name}.html)
    install(FILES ${pages}/${name}.html DESTINATION share/doc/halyrig)
endforeach()

# Debian wants man pages and changelogs compressed.
function(install_packed file name folder)
    set(packed ${CMAKE_BINARY_DIR}/packed/${name}.gz)
    add_custom_command(OUTPUT ${packed}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packed
        COMMAND gzip -9nc ${CMAKE_SOURCE_DIR}/${file} >${packed}
        DEPENDS ${CMAKE_SOURCE_DIR}/${file})
    set_property(GLOBAL APPEND PROPERTY package_files ${packed})
    install(FILES ${packed} DESTINATION ${folder})
endfunction()
install_packed(CHANGELOG.md changelog share/doc/halyrig)
install_packed(packaging/man/halyrig32.1 halyrig32.1 ${CMAKE_INSTALL_MANDIR}/man1)
install_packed(packaging/man/halyrigctl.1 halyrigctl.1 ${CMAKE_INSTALL_MANDIR}/man1)
get_property(package_files GLOBAL PROPERTY package_files)
add_custom_target(package_files DEPENDS ${package_files})

# Whatever the umask of who makes the package.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME halyrig)
set(CPACK_PACKAGE_VENDOR "The Halyrig authors")
set(CPACK_PACKAGE_CONTACT "The Halyrig authors <halyrig@tidewright.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "bridge between race instruments and the Tidewright navigation suite")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Ten times a second halyrig32 publishes the instrument variables of
Deckman as channels of the record that the programs of the suite share,
and sends channels back to the displays of Deckman. halyrigctl looks at
that record from the command line. A stand-in for Deckman, for trials,
comes with them.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What halyrigctl serve loads if it is there.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libavahi-client3, libqrencode4")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
include(CPack)
