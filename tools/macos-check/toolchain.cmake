# CMake's view of a Mac from Linux, for what check.sh compiles: the compiler with our declarations, nothing to link.
# It is given MACOS_CHECK (the folder of check.sh), MACOS_SYSROOT (the linker's stubs), MACOS_HEADERS (the portable libraries' headers)
# and MACOS_MINIMUM.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_CHECK MACOS_SYSROOT MACOS_HEADERS MACOS_MINIMUM)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_ARCHITECTURES arm64)
set(CMAKE_OSX_SYSROOT "${MACOS_SYSROOT}")

set(flags "-nostdlibinc -isystem ${MACOS_CHECK}/libc -isystem ${MACOS_CHECK}/declarations -isystem ${MACOS_HEADERS} -Wno-unused-command-line-argument")
set(cxx_headers "-isystem ${MACOS_CHECK}/libcxx -isystem /usr/lib/llvm-19/include/c++/v1")
foreach(language C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER /usr/bin/clang++-19)
    set(CMAKE_${language}_COMPILER_TARGET "arm64-apple-macos${MACOS_MINIMUM}")
    # In this order: the C++ library's headers go on to those of C.
    set(CMAKE_${language}_FLAGS_INIT "${cxx_headers} ${flags}")
endforeach()
set(CMAKE_C_COMPILER /usr/bin/clang-19)
set(CMAKE_C_FLAGS_INIT "${flags}")
set(CMAKE_AR llvm-ar-19)
set(CMAKE_RANLIB llvm-ranlib-19)
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)

# The libraries are Debian's; of them only headers, and names for the linker, are used.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_LIBRARY_ARCHITECTURE x86_64-linux-gnu)
set(CMAKE_PREFIX_PATH /usr)
set(QT_HOST_PATH /usr)
