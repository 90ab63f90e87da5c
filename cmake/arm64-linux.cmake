# SPDX-License-Identifier: MIT
# Builds for 64-bit ARM on Linux: Debian's cross compiler, and the libraries that tools/sysroot.sh unpacked. Tests start
# through run-arm64.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
# GCC tells at every pair of doubles in an interface that it was passed otherwise before its version 10.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")
include(${CMAKE_CURRENT_LIST_DIR}/arm64-sysroot.cmake)
