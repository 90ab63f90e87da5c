# SPDX-License-Identifier: MIT
# What the toolchain files for 64-bit ARM share: where libraries and headers may come from, and how a program is started.
get_filename_component(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-sysroot ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
  message(FATAL_ERROR "No libraries for arm64 in ${CMAKE_SYSROOT}: run tools/sysroot.sh")
endif()
include(${CMAKE_CURRENT_LIST_DIR}/cross-compiling.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-arm64)
