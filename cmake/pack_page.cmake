# cmake -D FROM=FOLDER -D TO=FILE.cc -P pack_page.cmake: what a browser gets, packed, as a table in C++. The packed bytes depend on the
# files alone: the time that a packer notes is put to zero.
file(GLOB_RECURSE names RELATIVE ${FROM} ${FROM}/*)
list(SORT names)
string(REPEAT "." 64 line)
set(table "")
foreach(name IN LISTS names)
    set(packed ${TO}.gz)
    file(ARCHIVE_CREATE OUTPUT ${packed} PATHS ${FROM}/${name} FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9)
    file(READ ${packed} bytes HEX)
    string(REGEX REPLACE "^(1f8b08..)........" "\\100000000" bytes "${bytes}")
    string(SHA256 tag "${bytes}")
    string(SUBSTRING ${tag} 0 16 tag)
    string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
    string(REPLACE "\n" "\"\n     \"" bytes "${bytes}")
    string(APPEND table "    {\"${name}\", \"\\\"${tag}\\\"\",\n     \"${bytes}\"sv},\n")
endforeach()
file(REMOVE ${TO}.gz)
file(WRITE ${TO} "#include \"halyrigctl/serve/page_files.h\"

namespace twr {
namespace {

using namespace std::string_view_literals;

constexpr PageFile kFiles[] = {
${table}};

}  // namespace

std::span<const PageFile> PageFiles() { return kFiles; }

}  // namespace twr
")
