# SPDX-License-Identifier: MIT
# gx_kernel_sources(target set SOURCES ... FLAGS ...): adds sources of kernels to a target, compiled for one instruction
# set, whose name they find in GX_SIMD. Kernels throw nothing. Loops begin at multiples of 32 bytes: the short ones otherwise
# run at full or half the speed by where the linker happens to put them.
function(gx_kernel_sources target set)
  cmake_parse_arguments(KERNELS "" "" "SOURCES;FLAGS" ${ARGN})
  add_library(${target}_${set} OBJECT ${KERNELS_SOURCES})
  target_compile_definitions(${target}_${set} PRIVATE GX_SIMD=${set})
  target_compile_options(${target}_${set} PRIVATE $<TARGET_PROPERTY:${target},COMPILE_OPTIONS> ${KERNELS_FLAGS}
    -fno-exceptions -falign-functions=32 -falign-loops=32)
  target_include_directories(${target}_${set} PRIVATE $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  target_link_libraries(${target}_${set} PRIVATE gx_options)
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_${set}>)
endfunction()
