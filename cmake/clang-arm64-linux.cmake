# SPDX-License-Identifier: MIT
# A second compiler for 64-bit ARM: Clang with the same libraries and the C++ library of Debian's cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
find_program(CMAKE_C_COMPILER NAMES clang-14 clang REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES clang++-14 clang++ REQUIRED)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_C_COMPILER_EXTERNAL_TOOLCHAIN /usr)
set(CMAKE_CXX_COMPILER_EXTERNAL_TOOLCHAIN /usr)
include(${CMAKE_CURRENT_LIST_DIR}/arm64-sysroot.cmake)
