# SPDX-License-Identifier: MIT
# Builds for 64-bit Windows on Linux: GCC of mingw-w64, POSIX threads, everything linked statically so that no run-time
# library of the compiler lies beside the programs. Tests start through run-wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
include(${CMAKE_CURRENT_LIST_DIR}/windows-on-linux.cmake)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
# Wide vectors on a stack that is aligned to 16 bytes: not every build of this GCC avoids aligned moves there by itself.
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")
