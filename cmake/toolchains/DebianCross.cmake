# Shared part of the cross toolchains: Debian's cross compilers (which bring their own ARM C
# library under /usr/TRIPLE) and a sysroot of Debian's ARM packages made by
# scripts/make-sysroot.sh in build/sysroot/ARCH. Set before including this file:
# VESK_CROSS_TRIPLE (aarch64-linux-gnu), VESK_CROSS_ARCH (arm64), VESK_CROSS_PROCESSOR (aarch64)
# and VESK_CROSS_QEMU (qemu-aarch64).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${VESK_CROSS_PROCESSOR})
set(CMAKE_C_COMPILER ${VESK_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${VESK_CROSS_TRIPLE}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${VESK_CROSS_TRIPLE})

get_filename_component(VESK_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${VESK_CROSS_ARCH}
                       ABSOLUTE)
set(VESK_CROSS_LIBC /usr/${VESK_CROSS_TRIPLE})
if(NOT EXISTS ${VESK_SYSROOT}/.complete)
    message(FATAL_ERROR "no sysroot in ${VESK_SYSROOT}: run scripts/install-deps.sh --cross")
endif()

# Libraries, headers and CMake packages come from the sysroot or the cross C library, programs
# (hidl-gen, python3, the peers of the tests) from the machine.
set(CMAKE_FIND_ROOT_PATH ${VESK_SYSROOT} ${VESK_CROSS_LIBC})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VESK_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${VESK_SYSROOT}/usr/lib/${VESK_CROSS_TRIPLE}/pkgconfig:${VESK_SYSROOT}/usr/share/pkgconfig)

# The sysroot's libraries load others of the sysroot (libutils -> libbacktrace -> 7z.so).
set(VESK_SYSROOT_LIBRARY_DIRS
    ${VESK_SYSROOT}/lib/${VESK_CROSS_TRIPLE}
    ${VESK_SYSROOT}/usr/lib/${VESK_CROSS_TRIPLE}
    ${VESK_SYSROOT}/usr/lib/${VESK_CROSS_TRIPLE}/android
    ${VESK_SYSROOT}/usr/lib/p7zip)
list(TRANSFORM VESK_SYSROOT_LIBRARY_DIRS PREPEND "-Wl,-rpath-link," OUTPUT_VARIABLE rpath_links)
string(JOIN " " rpath_links ${rpath_links})
set(CMAKE_EXE_LINKER_FLAGS_INIT "${rpath_links}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${rpath_links}")

# Test programs run under qemu-user, with the cross C library as the emulator's prefix and the
# sysroot's folders as the library path. The emulator is named by its full path: a test that
# starts a program of the build with exec (not through a shell) starts the emulator.
find_program(VESK_CROSS_QEMU_PATH ${VESK_CROSS_QEMU} REQUIRED)
string(JOIN ":" library_path ${VESK_SYSROOT_LIBRARY_DIRS})
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${VESK_CROSS_QEMU_PATH} -L ${VESK_CROSS_LIBC} -E LD_LIBRARY_PATH=${library_path})
