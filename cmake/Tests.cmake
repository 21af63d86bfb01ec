# krt9_add_test(NAME [PORTABLE file...] [SOURCES file...] [LIBRARIES library...])
# One GoogleTest program. Each writes its results as JSON, from which the last line of `make check`
# counts the cases.
#
# The name is the folder's: unit_windows is in tests/unit/windows. What the program holds may follow,
# as it must where a folder has several: unit_protocol_records.
#
# PORTABLE files are built on macOS as well, against the real frameworks: they include driver
# folders, framework headers and test data, and nothing of platform/ or desktop/ (`make lint` checks
# it). SOURCES are built on Linux only. A program without PORTABLE files does not exist on macOS.
find_package(GTest REQUIRED)

set(KRT9_TEST_RESULTS ${CMAKE_BINARY_DIR}/test-results)
file(MAKE_DIRECTORY ${KRT9_TEST_RESULTS})

# Paths of this checkout are in one generated header, not on every compiler's command line.
set(KRT9_GENERATED ${CMAKE_BINARY_DIR}/generated)
configure_file(${CMAKE_SOURCE_DIR}/tests/support/Paths.h.in
               ${KRT9_GENERATED}/tests/support/Paths.h @ONLY)

# Tests run once and briefly: most of their cost is compilation.
set(krt9_test_options -O0 -g1 ${krt9_not_fuzzed})

# The headers that nearly every test includes are precompiled once. They serve only code that is
# compiled with the same options, so they and the programs are never position-independent, not even
# in a build whose archives go into shared libraries.
function(krt9_precompile_test_headers)
    file(WRITE ${CMAKE_BINARY_DIR}/test_headers.cpp "")
    add_library(krt9_test_headers STATIC ${CMAKE_BINARY_DIR}/test_headers.cpp)
    set_target_properties(krt9_test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    krt9_compile_options(krt9_test_headers)
    target_compile_options(krt9_test_headers PRIVATE ${krt9_test_options})
    target_link_libraries(krt9_test_headers PRIVATE GTest::gmock GTest::gtest)
    target_precompile_headers(krt9_test_headers PRIVATE
        <gmock/gmock.h> <gtest/gtest.h> <functional> <map> <memory> <optional> <string> <vector>)
endfunction()
krt9_precompile_test_headers()

function(krt9_test_sources target libraries)
    target_sources(${target} PRIVATE ${ARGN})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    krt9_compile_options(${target})
    target_compile_options(${target} PRIVATE ${krt9_test_options})
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR} ${KRT9_GENERATED})
    target_link_libraries(${target} PRIVATE ${libraries} GTest::gmock GTest::gtest)
endfunction()

function(krt9_add_test name)
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${CMAKE_SOURCE_DIR}/tests
               OUTPUT_VARIABLE folder)
    string(REPLACE "/" "_" folder "${folder}")
    if(NOT name MATCHES "^${folder}(_|$)")
        message(FATAL_ERROR "The test program ${name} must be named after its folder: ${folder}")
    endif()
    cmake_parse_arguments(arg "" "TIMEOUT" "PORTABLE;SOURCES;LIBRARIES" ${ARGN})
    if(APPLE)
        set(arg_SOURCES)
        list(REMOVE_ITEM arg_LIBRARIES krt9_platform krt9_desktop
            krt9_scripted_desktop krt9_stage)
        if(NOT arg_PORTABLE)
            return()
        endif()
    endif()
    set(sources ${arg_PORTABLE} ${arg_SOURCES})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 600)  # against a hang; no test comes near it
    endif()
    if(KRT9_COVERAGE)
        math(EXPR arg_TIMEOUT "3 * ${arg_TIMEOUT}")  # counting takes its time
    endif()
    # The precompiled headers serve C++ alone, so sources in Objective-C++ are a target of their own.
    set(objective_c ${sources})
    list(FILTER objective_c INCLUDE REGEX "\\.mm$")
    list(FILTER sources EXCLUDE REGEX "\\.mm$")
    add_executable(${name})
    krt9_test_sources(${name} "${arg_LIBRARIES}" ${sources})
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
    krt9_link_frameworks(${name})
    if(sources)
        target_precompile_headers(${name} REUSE_FROM krt9_test_headers)
    endif()
    if(objective_c)
        add_library(${name}_objective_c OBJECT)
        krt9_test_sources(${name}_objective_c "${arg_LIBRARIES}" ${objective_c})
        target_link_libraries(${name} PRIVATE ${name}_objective_c)
    endif()
    add_test(NAME ${name} COMMAND ${name} --gtest_output=json:${KRT9_TEST_RESULTS}/${name}.json)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
    if(KRT9_COVERAGE)
        # One file for each process and library, so that the report can tell what a program reaches. %c
        # counts in the file itself: what a process did counts however it ended, by abort(), by
        # _exit() after a fork(), or by a signal.
        set_tests_properties(${name} PROPERTIES
            ENVIRONMENT "LLVM_PROFILE_FILE=${CMAKE_BINARY_DIR}/profiles/${name}/%p-%m%c.profraw")
    endif()
endfunction()
