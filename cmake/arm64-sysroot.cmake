# SPDX-License-Identifier: MIT
# What the toolchain files for 64-bit ARM share: where libraries and headers may come from, and how a program is started.
get_filename_component(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-sysroot ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
  message(FATAL_ERROR "No libraries for arm64 in ${CMAKE_SYSROOT}: run tools/sysroot.sh")
endif()
include(${CMAKE_CURRENT_LIST_DIR}/cross-compiling.cmake)
# pkg-config would tell of the machine's own packages.
set(ENV{PKG_CONFIG_PATH} "")
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-arm64)
