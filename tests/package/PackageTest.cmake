# SPDX-License-Identifier: MIT
# cmake -DBUILD=<build tree> -DHOST=<this folder> -DWORK=<scratch> [-DTOOLCHAIN= -DEMULATOR= -DSUFFIX= -DSYSROOT=] -P PackageTest.cmake:
# installs the library, moves the installed folder elsewhere, builds a host there with find_package and with pkg-config, and
# runs both.
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed (${result}): ${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
foreach(component runtime dev)
  step(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/before --component ${component})
endforeach()
set(prefix "${WORK}/moved")
file(RENAME ${WORK}/before ${prefix})
set(options -G ${GENERATOR} -DCMAKE_BUILD_TYPE=Release)
if(TOOLCHAIN)
  # The toolchain file confines packages to the compiler's own root.
  list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
else()
  list(APPEND options -DCMAKE_C_COMPILER=${COMPILER})
endif()
step(${CMAKE_COMMAND} -S ${HOST} -B ${WORK}/build ${options} -DCMAKE_PREFIX_PATH=${prefix})
step(${CMAKE_COMMAND} --build ${WORK}/build)
# On Windows the library lies beside the program, elsewhere the program knows where it is.
if(SUFFIX STREQUAL ".exe")
  file(COPY ${prefix}/bin/Graphics.dll DESTINATION ${WORK}/build)
endif()
step(${EMULATOR} ${WORK}/build/host${SUFFIX})

find_program(pkg_config pkg-config)
if(pkg_config)
  file(GLOB_RECURSE pc ${prefix}/graphics.pc)
  get_filename_component(folder "${pc}" DIRECTORY)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH= PKG_CONFIG_LIBDIR=${folder} ${pkg_config} --cflags --libs graphics
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  if(SYSROOT)
    list(PREPEND flags --sysroot=${SYSROOT})
  endif()
  step(${COMPILER} ${HOST}/host.c -o ${WORK}/build/host-pc.exe ${flags})
  if(SUFFIX STREQUAL ".exe")
    step(${EMULATOR} ${WORK}/build/host-pc.exe)
  else()
    # The loader is told where the library is; the name that it looks for is in the program.
    file(GLOB_RECURSE library ${prefix}/libGraphics.so)
    get_filename_component(folder "${library}" DIRECTORY)
    step(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${folder} ${EMULATOR} ${WORK}/build/host-pc.exe)
  endif()
endif()
