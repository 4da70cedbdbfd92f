# Compiler and linker flags of every target of the project.
add_library(halyrig_flags INTERFACE)

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

target_compile_options(halyrig_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    # No fused multiply-add: every build gives the same number.
    -ffp-contract=off
    -fstack-protector-strong
    # The same bytes wherever the sources are; scripts/reproduce compares.
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 wrongly reports an overlap in `"literal" + string`.
    target_compile_options(halyrig_flags INTERFACE -Wno-restrict)
    # The files of a library are compiled together, which takes much less time; the anonymous namespace of one then looks like that of a
    # header. The preset clang compiles each by itself, and so finds an include that is missing.
    if(CMAKE_UNITY_BUILD)
        target_compile_options(halyrig_flags INTERFACE -Wno-subobject-linkage)
    endif()
else()
    # What clang sees and GCC doesn't, or tells better from what is right. The tests' tables are full of plain literals.
    target_compile_options(halyrig_flags INTERFACE -Wshadow-all -Wcast-qual -Wcast-align -Wextra-semi-stmt -Wloop-analysis
        -Wunreachable-code -Wtautological-compare -Wconditional-uninitialized -Wundef -Wmissing-noreturn -Wunused-member-function
        -Wover-aligned -Wheader-hygiene
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:HALYRIG_TEST>>>:-Wconversion> $<$<NOT:$<BOOL:$<TARGET_PROPERTY:HALYRIG_TEST>>>:-Wsign-conversion>)
endif()
target_include_directories(halyrig_flags INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)

if(WIN32)
    # SSE2 in place of x87, whose wider registers compare and round differently from every other build; the compiler's own printf
    # and scanf in place of those of the old C run time.
    target_compile_options(halyrig_flags INTERFACE -msse2 -mfpmath=sse)
    target_compile_definitions(halyrig_flags INTERFACE
        UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601 __USE_MINGW_ANSI_STDIO=1 TWR_EXPORT_CALL=__stdcall)
    target_link_options(halyrig_flags INTERFACE -static -fstack-protector-strong -Wl,--nxcompat -Wl,--dynamicbase
        -Wl,--no-insert-timestamp)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_link_options(halyrig_flags INTERFACE -s)
    endif()
else()
    target_compile_definitions(halyrig_flags INTERFACE TWR_EXPORT_CALL=)
    target_link_options(halyrig_flags INTERFACE -Wl,-z,relro,-z,now)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_definitions(halyrig_flags INTERFACE $<$<NOT:$<BOOL:$<TARGET_PROPERTY:HALYRIG_TEST>>>:_FORTIFY_SOURCE=2>)
    endif()
endif()

# Compiling the tests takes a third of a build. Those of Windows would take longer to link if they were not optimised at all; GCC 12 wrongly
# reports texts that end outside of their arrays there.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    if(WIN32)
        set(hardly -O1 -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    else()
        set(hardly -O0)
    endif()
    target_compile_options(halyrig_flags INTERFACE "$<$<BOOL:$<TARGET_PROPERTY:HALYRIG_TEST>>:${hardly}>")
    # The companion waits for the record, the disk and its users; with -O2 it took a third longer to compile.
    target_compile_options(halyrig_flags INTERFACE $<$<BOOL:$<TARGET_PROPERTY:HALYRIG_COMPANION>>:-O1>)
endif()
# What runs beside the instruments is optimised as a whole, and nothing else: the link of the companion took longer than all others.
# Objects also contain plain code, with which the rest is linked.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(plain $<OR:$<BOOL:$<TARGET_PROPERTY:HALYRIG_TEST>>,$<BOOL:$<TARGET_PROPERTY:HALYRIG_COMPANION>>>)
    target_compile_options(halyrig_flags INTERFACE $<IF:${plain},-ffunction-sections,-flto=auto>
        $<IF:${plain},-fdata-sections,-ffat-lto-objects>)
    target_link_options(halyrig_flags INTERFACE $<IF:$<BOOL:$<TARGET_PROPERTY:HALYRIG_WHOLE>>,-flto=auto,-fno-lto>
        $<$<BOOL:$<TARGET_PROPERTY:HALYRIG_COMPANION>>:-Wl,--gc-sections>)
endif()

if(HALYRIG_SANITIZE)
    add_compile_options(-fsanitize=${HALYRIG_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${HALYRIG_SANITIZE})
    # What the program puts before the system's pthread_create calls the next one, which is the sanitizer's if that is a library.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND HALYRIG_SANITIZE MATCHES address AND NOT HALYRIG_FUZZ)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-runtime-dir OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        add_link_options(-shared-libasan -Wl,-rpath,${runtime})
    endif()
endif()
