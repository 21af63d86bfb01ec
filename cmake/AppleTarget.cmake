# Toolchain file: compiles for macOS on Linux, for checking only. There is no SDK here, so nothing can
# be linked: the C++ library's headers are LLVM's, the C library's and Foundation's stand in for
# Apple's, and the frameworks' are those of platform/. See scripts/apple/README.md.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_INSTALL_NAME_TOOL /usr/bin/true CACHE FILEPATH "")
set(CMAKE_AR /usr/bin/llvm-ar CACHE FILEPATH "")
set(CMAKE_RANLIB /usr/bin/llvm-ranlib CACHE FILEPATH "")
foreach(language C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macos13)
endforeach()
set(CMAKE_CXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_OBJCXX_COMPILER /usr/bin/clang++-19)

# An object may wait for a program that its test starts: an empty file stands for it.
set(CMAKE_CXX_LINK_EXECUTABLE "${CMAKE_COMMAND} -E touch <TARGET>")
set(CMAKE_OBJCXX_LINK_EXECUTABLE "${CMAKE_COMMAND} -E touch <TARGET>")

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH krt9_root)
execute_process(COMMAND gcc -print-multiarch OUTPUT_VARIABLE krt9_multiarch
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE krt9_gcc_include
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

# The C library declares what POSIX has and what the BSDs have, and nothing of GNU's. Its __nonnull
# would clash with the compiler's, and its <ctype.h> macros with libc++'s null locale.
set(krt9_flags
    -nostdinc -fexceptions -fno-blocks
    -U__nonnull -D__NO_CTYPE -D_DEFAULT_SOURCE -D_XOPEN_SOURCE=700
    -isystem /usr/lib/llvm-19/include/c++/v1
    -isystem /usr/lib/llvm-19/lib/clang/19/include
    -isystem ${krt9_root}/scripts/apple/include
    -isystem ${krt9_root}/platform/include
    -isystem /usr/include/GNUstep
    -isystem /usr/include/${krt9_multiarch}
    -isystem /usr/include
    -idirafter ${krt9_gcc_include})
list(JOIN krt9_flags " " krt9_flags)
set(CMAKE_CXX_FLAGS_INIT "${krt9_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${krt9_flags}")

# Debian packages that CMake does not find in their folder here.
set(fmt_DIR /usr/lib/${krt9_multiarch}/cmake/fmt)
set(GTest_DIR /usr/lib/${krt9_multiarch}/cmake/GTest)
set(LibArchive_LIBRARY /usr/lib/${krt9_multiarch}/libarchive.so)
