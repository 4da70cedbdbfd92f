# Libraries of headers only: Debian's serve the Windows build too. A folder of their own keeps the rest of /usr/include out of that.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)

# header_only(TARGET HEADER): the library whose main header is HEADER, FOLDER/FILE.
function(header_only target header)
    find_path(${target}_root ${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    get_filename_component(folder ${header} DIRECTORY)
    file(CREATE_LINK ${${target}_root}/${folder} ${CMAKE_BINARY_DIR}/include/${folder} SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)
endfunction()

header_only(cli11 CLI/CLI.hpp)
header_only(nlohmann_json nlohmann/json.hpp)
