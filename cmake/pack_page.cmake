# cmake -D FROM=FOLDER -D TO=FILE.cc -P pack_page.cmake: what a browser gets, packed, as a table in C++, and the page of a report, in
# one piece. The packed bytes depend on the files alone: the time that a packer notes is put to zero.
cmake_minimum_required(VERSION 3.20)
string(REPEAT "." 64 line)

# The file, packed, as a string literal of C++, and its tag.
function(pack path literal tag)
    file(ARCHIVE_CREATE OUTPUT ${TO}.gz PATHS ${path} FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9)
    file(READ ${TO}.gz bytes HEX)
    string(REGEX REPLACE "^(1f8b08..)........" "\\100000000" bytes "${bytes}")
    string(SHA256 hash "${bytes}")
    string(SUBSTRING ${hash} 0 16 hash)
    string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
    string(REPLACE "\n" "\"\n     \"" bytes "${bytes}")
    set(${literal} "\"${bytes}\"sv" PARENT_SCOPE)
    set(${tag} ${hash} PARENT_SCOPE)
endfunction()

# The modules that one needs, itself the last, and of each the names that others take from it.
set(import "import {([^}]*)} from '\\./([a-z_]+\\.js)'")
function(gather module)
    get_property(known GLOBAL PROPERTY known_modules)
    if(module IN_LIST known)
        return()
    endif()
    set_property(GLOBAL APPEND PROPERTY known_modules ${module})
    file(READ ${FROM}/${module} text)
    string(REGEX MATCHALL "${import}" imports "${text}")
    foreach(statement IN LISTS imports)
        string(REGEX REPLACE "${import}" "\\1" names "${statement}")
        string(REGEX REPLACE "${import}" "\\2" from "${statement}")
        set_property(GLOBAL APPEND_STRING PROPERTY names_of_${from} "${names}, ")
        gather(${from})
    endforeach()
    set_property(GLOBAL APPEND PROPERTY modules ${module})
endfunction()

# A file that is opened from a disk can't load modules, so each becomes a function, which gives what others take from it.
gather(report.js)
get_property(modules GLOBAL PROPERTY modules)
set(scripts "'use strict';\nconst modules = {};\n")
foreach(module IN LISTS modules)
    file(READ ${FROM}/${module} text)
    get_property(names GLOBAL PROPERTY names_of_${module})
    string(REGEX REPLACE "${import}" "const {\\1} = modules['\\2']" text "${text}")
    string(REPLACE "\nexport " "\n" text "${text}")
    string(APPEND scripts "modules['${module}'] = (() => {\n${text}\nreturn {${names}};\n})();\n")
endforeach()
set(styles "")
foreach(name third_party/uplot/uPlot.min themes page tiles views report)
    file(READ ${FROM}/${name}.css text)
    string(APPEND styles "${text}")
endforeach()
file(READ ${FROM}/third_party/uplot/uPlot.iife.min.js plots)
file(READ ${FROM}/index.html index)
string(REGEX MATCH "<svg class=\"symbols\".*</symbol>[ \n]*</svg>" symbols "${index}")
file(READ ${FROM}/report.html report)
foreach(part symbols styles plots scripts)
    string(REPLACE "{{${part}}}" "${${part}}" report "${report}")
endforeach()
file(WRITE ${TO}.html "${report}")
pack(${TO}.html report_page report_tag)

file(GLOB_RECURSE names RELATIVE ${FROM} ${FROM}/*)
list(FILTER names EXCLUDE REGEX "^report")
list(SORT names)
set(table "")
foreach(name IN LISTS names)
    pack(${FROM}/${name} literal tag)
    string(APPEND table "    {\"${name}\", \"\\\"${tag}\\\"\",\n     ${literal}},\n")
endforeach()
file(REMOVE ${TO}.gz ${TO}.html)
file(WRITE ${TO} "#include \"halyrigctl/serve/page_files.h\"

namespace twr {
namespace {

using namespace std::string_view_literals;

constexpr PageFile kFiles[] = {
${table}};

}  // namespace

std::span<const PageFile> PageFiles() { return kFiles; }
std::string_view ReportPage() {
    return ${report_page};
}

}  // namespace twr
")
