# Builds for a device's processor with Debian's cross compiler, against the libraries under ORVEL_SYSROOT, and runs what
# it built with the user-mode emulator. scripts/test-aarch64 makes the folder and names it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVEL_SYSROOT)

set(CMAKE_SYSROOT ${ORVEL_SYSROOT})
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH ${ORVEL_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${ORVEL_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${ORVEL_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${ORVEL_SYSROOT}/usr/share/pkgconfig)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64;-L;${ORVEL_SYSROOT})
