# Toolchain file for 32-bit ARM Linux, hard float, with Debian's cross compiler and a sysroot that
# "./check --target armhf" makes (tools/sysroot.sh). Another sysroot: -DDEVICE_SYSROOT=<folder>.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(DEVICE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-armhf CACHE PATH "The device's headers and libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DEVICE_SYSROOT)
get_filename_component(CMAKE_SYSROOT ${DEVICE_SYSROOT} ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
    message(FATAL_ERROR "No sysroot in ${CMAKE_SYSROOT}: ./check --target armhf makes one, or name yours with "
                        "-DDEVICE_SYSROOT=<folder>")
endif()

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
# Notes on how compilers before gcc 7 passed arguments; no code of such a one is linked with ours.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

# Programs of the build, such as the code generators, are the build machine's; all else is the device's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)

# How the device's programs run on the build machine.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${CMAKE_SYSROOT})
