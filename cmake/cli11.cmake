# CLI11 is headers only, so Debian's serve the Windows build too; a folder of its own keeps the rest of /usr/include out of that.
find_path(CLI11_HEADERS CLI/CLI.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${CLI11_HEADERS}/CLI ${CMAKE_BINARY_DIR}/include/CLI SYMBOLIC)
add_library(cli11 INTERFACE)
target_include_directories(cli11 SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)
