# SPDX-License-Identifier: MIT
# What the toolchain files for Windows share: where libraries and headers may come from, and how a program is started.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/cross-compiling.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/run-wine")
