# Header-only libraries, as installed for this system; else the Windows build uses Debian's headers too, linked into a folder of their
# own that keeps the rest of /usr/include out.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)

# header_only(PACKAGE HEADER): the target PACKAGE::PACKAGE, whose main header is HEADER, FOLDER/FILE.
function(header_only package header)
    find_package(${package} CONFIG QUIET GLOBAL)
    if(TARGET ${package}::${package})
        return()
    endif()
    find_path(${package}_root ${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    get_filename_component(folder ${header} DIRECTORY)
    file(CREATE_LINK ${${package}_root}/${folder} ${CMAKE_BINARY_DIR}/include/${folder} SYMBOLIC)
    add_library(${package}::${package} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${package}::${package} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)
endfunction()

header_only(CLI11 CLI/CLI.hpp)
header_only(nlohmann_json nlohmann/json.hpp)
header_only(boost boost/beast.hpp)  # by its header: Boost's own package would ask for the libraries that are none
target_compile_definitions(boost::boost INTERFACE BOOST_ERROR_CODE_HEADER_ONLY BOOST_ALL_NO_LIB)
if(WIN32)
    target_link_libraries(boost::boost INTERFACE ws2_32 mswsock)
endif()
