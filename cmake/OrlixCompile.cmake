# Compiler settings that every target of the project shares. (Resources are compiled without them.)

# Results are the same bits on every build: SSE2 arithmetic on 32-bit too, no fused multiply-add.
add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Wconversion;-Wshadow;-ffp-contract=off>")
# Clang's -Wconversion warns of more than GCC's, which the sources are written for: of changes of sign, and of sizes
# that came from an int and go back into one.
add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-sign-conversion;-Wno-shorten-64-to-32>")
if(ORLIX_WARNINGS_ARE_ERRORS)
    add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-Werror>")
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-msse2;-mfpmath=sse>")
endif()
if(ORLIX_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(WIN32)
    # Self-contained binaries: the compiler's runtime is linked in.
    add_link_options(-static)
    add_compile_definitions(UNICODE _UNICODE NOMINMAX _WIN32_WINNT=0x0601)
    set(ZLIB_USE_STATIC_LIBS ON)
    find_program(ORLIX_WIDL NAMES i686-w64-mingw32-widl x86_64-w64-mingw32-widl REQUIRED)
endif()
find_package(ZLIB REQUIRED)

# Headers that are parsed once for all sources of a target: with those of the system, which orlix.h includes on Windows,
# they are most of the time of a compilation. Every file still includes what it uses: the presets dev and clang and
# clang-tidy go without precompiled headers and find what is missing.
function(orlix_precompile target)
    cmake_parse_arguments(PARSE_ARGV 1 of "" "REUSE_FROM" "")
    if(of_REUSE_FROM)
        target_precompile_headers(${target} REUSE_FROM ${of_REUSE_FROM})
    else()
        target_precompile_headers(${target} PRIVATE ${of_UNPARSED_ARGUMENTS})
    endif()
    # ccache knows the precompiled header only when the preprocessor keeps it.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
endfunction()

# The suffix of a file name selects the instruction set, and nothing else does.
function(orlix_instruction_sets)
    foreach(file IN LISTS ARGN)
        if(file MATCHES "_avx2\\.cpp$")
            set_source_files_properties(${file} PROPERTIES SKIP_PRECOMPILE_HEADERS ON
                COMPILE_OPTIONS "-mavx2;-mfma;-mbmi;-mbmi2;-mpopcnt;-mpclmul")
        elseif(file MATCHES "_avx512\\.cpp$")
            # VBMI and GFNI came with the processors that the variant is chosen on (Ice Lake, Zen 4 and later).
            string(CONCAT options "-mavx512f;-mavx512bw;-mavx512vl;-mavx512dq;-mavx512vbmi;-mgfni;"
                "-mavx2;-mfma;-mbmi;-mbmi2;-mpopcnt;-mprefer-vector-width=512")
            # So did these, which only binary images need.
            if(file MATCHES "/binary/")
                string(APPEND options ";-mavx512cd;-mavx512vbmi2;-mavx512vpopcntdq")
            endif()
            set_source_files_properties(${file} PROPERTIES SKIP_PRECOMPILE_HEADERS ON COMPILE_OPTIONS "${options}")
        endif()
    endforeach()
endfunction()

# In a unity build (CMAKE_UNITY_BUILD) the files of each given folder, and of those below it, are compiled together, so
# the names local to them differ. All other files of the target, kernels above all, are compiled alone.
function(orlix_unite_folders target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
    foreach(folder IN LISTS ARGN)
        file(GLOB_RECURSE files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
        list(FILTER files EXCLUDE REGEX "_(scalar|sse2|avx2|avx512)\\.cpp$")
        set_source_files_properties(${files} PROPERTIES UNITY_GROUP ${folder})
    endforeach()
endfunction()
