# SPDX-License-Identifier: MIT
# Switches and the compile options that every target shares.
option(GX_BUILD_TESTS "Build the tests" ON)
option(GX_BUILD_TOOLS "Build the recorder and the player of recorded pages" ON)
option(GX_BUILD_EXAMPLES "Build the examples" ON)
option(GX_BUILD_BENCH "Build the benches (needs the peers' packages)" OFF)
option(GX_BUILD_FUZZ "Build the libFuzzer harnesses (Clang)" OFF)
option(GX_PACKAGING "Prepare Debian packages and archives (tools/package.sh)" OFF)
option(GX_WERROR "Warnings are errors" OFF)
set(GX_SANITIZE "" CACHE STRING "Sanitizers, e.g. address,undefined")

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

# Names of source files in the binaries are those within the tree, wherever it lies. A compiler cache may hand the compiler
# paths relative to the build folder; packages have to have the same bytes with and without one.
file(RELATIVE_PATH GX_SOURCE_FROM_BUILD ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})

# A page has the same bytes on every processor, compiler and instruction set: no contraction, no fast-math.
add_library(gx_options INTERFACE)
target_compile_options(gx_options INTERFACE
  -ffp-contract=off -Wall -Wextra -Wshadow
  $<$<BOOL:${GX_WERROR}>:-Werror>
  -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
  $<$<BOOL:${GX_PACKAGING}>:-ffile-prefix-map=${GX_SOURCE_FROM_BUILD}=>)
if(GX_SANITIZE)
  target_compile_options(gx_options INTERFACE -fsanitize=${GX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(gx_options INTERFACE -fsanitize=${GX_SANITIZE})
endif()
