# GoogleTest as installed for this system, or else from Debian's source package.
find_package(GTest CONFIG QUIET)
if(NOT GTest_FOUND)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()

# twr_test(NAME [AS_SHIPPED] SOURCES... LIBRARIES...): one test program. scripts/test runs all under the sanitizers, and of the preset linux
# these alone: what looks at numbers, texts, the order of stores, allocations, crashes and the system could find something else there.
add_custom_target(as_shipped DEPENDS halyrig32 halyrigctl ShDfW2)
function(twr_test name)
    cmake_parse_arguments(ARG "AS_SHIPPED" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE halyrig_flags ${ARG_LIBRARIES} test_support)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    set_target_properties(${name} PROPERTIES HALYRIG_TEST ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    add_test(NAME ${name} COMMAND ${name})
    if(ARG_AS_SHIPPED)
        add_dependencies(as_shipped ${name})
    else()
        set_tests_properties(${name} PROPERTIES LABELS sanitized)
    endif()
endfunction()
