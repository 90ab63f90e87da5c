# SPDX-License-Identifier: MIT
# A second compiler for 64-bit Windows: Clang and LLD with the headers and libraries of Debian's mingw-w64, whose GCC folder
# Clang 14 does not find by itself. TLS is emulated, as in that libstdc++.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
find_program(CMAKE_C_COMPILER NAMES clang-14 clang REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES clang++-14 clang++ REQUIRED)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
include(${CMAKE_CURRENT_LIST_DIR}/windows-on-linux.cmake)
file(GLOB gx_gcc /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
list(GET gx_gcc -1 gx_gcc)
set(gx_headers "-isystem ${CMAKE_FIND_ROOT_PATH}/include -femulated-tls")
set(CMAKE_C_FLAGS_INIT "-nostdlibinc ${gx_headers}")
set(CMAKE_CXX_FLAGS_INIT
  "-nostdlibinc -nostdinc++ -isystem ${gx_gcc}/include/c++ -isystem ${gx_gcc}/include/c++/x86_64-w64-mingw32 ${gx_headers}")
set(gx_link "-Wno-unused-command-line-argument -fuse-ld=lld -static -L${gx_gcc} -L${CMAKE_FIND_ROOT_PATH}/lib -lpthread")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${gx_link}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${gx_link}")
