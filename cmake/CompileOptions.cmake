# Warnings are errors in our own code. KRT9_SANITIZE=ON builds with AddressSanitizer (leaks
# included) and UndefinedBehaviorSanitizer.
option(KRT9_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

if(KRT9_SANITIZE)
    set(krt9_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined)
    add_compile_options(${krt9_sanitizers} -fno-omit-frame-pointer)
    add_link_options(${krt9_sanitizers})
endif()

# KRT9_FUZZ=ON, together with KRT9_SANITIZE, adds the fuzz targets of fuzz/: they run the libraries
# that the tests run. KRT9_COVERAGE=ON builds the tests, or the fuzz targets without sanitizers, to
# measure what they reach.
option(KRT9_FUZZ "Build the fuzz targets" OFF)
option(KRT9_COVERAGE "Build for the measurement of coverage" OFF)

# For what no fuzz target runs, so that it compiles quickly.
set(krt9_not_fuzzed)
if(KRT9_FUZZ)
    set(krt9_not_fuzzed -O0 -fno-sanitize=fuzzer-no-link)
    add_compile_options(-O1)
    if(NOT KRT9_COVERAGE)
        add_compile_options(-fsanitize=fuzzer-no-link)
    endif()
endif()
if(BUILD_SHARED_LIBS)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)  # for archives that go into a shared library
    # Such a build is for measurements: what a test installs of it uses the libraries where they are.
    set(CMAKE_INSTALL_RPATH ${CMAKE_BINARY_DIR}/lib)
endif()
if(KRT9_COVERAGE)
    # Counters that can lie in a file from the start: see krt9_add_test.
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping
        "SHELL:-mllvm -runtime-counter-relocation")
    add_link_options(-fprofile-instr-generate)
endif()

if(NOT APPLE)
    add_link_options(-fuse-ld=lld)
endif()

# GNUstep's Foundation under the runtime that ships with GCC.
if(NOT APPLE)
    execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE krt9_gcc_include
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(krt9_objcxx_flags -fobjc-runtime=gcc -fobjc-exceptions -fexceptions
        -fconstant-string-class=NSConstantString "SHELL:-isystem /usr/include/GNUstep"
        "SHELL:-idirafter ${krt9_gcc_include}")
endif()

function(krt9_compile_options target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Werror)
    if(APPLE)
        # Newer SDKs deprecate functions that the driver calls and for which C has no replacement.
        target_compile_options(${target} PRIVATE -Wno-error=deprecated-declarations)
        # Else the system's headers may define the words check, verify and require as macros.
        target_compile_definitions(${target} PRIVATE
            __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES=0)
    else()
        target_compile_options(${target} PRIVATE "$<$<COMPILE_LANGUAGE:OBJCXX>:${krt9_objcxx_flags}>")
    endif()
endfunction()

# krt9_precompile(TARGET header...): headers that most C++ sources of the target get to read. On a
# Mac, and by `make lint`, each source is read as it stands, so that a missing include is noticed.
function(krt9_precompile target)
    if(APPLE)
        return()
    endif()
    list(TRANSFORM ARGN REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>")
    target_precompile_headers(${target} PRIVATE ${ARGN})
endfunction()
