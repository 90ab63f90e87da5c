# SPDX-License-Identifier: MIT
# cmake -DBUILD=<build tree> -DHOST=<this folder> -DWORK=<scratch> [-DTOOLCHAIN= -DEMULATOR=] -P PackageTest.cmake:
# installs the library into a prefix of its own, builds a host there with find_package and runs it.
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed (${result}): ${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
step(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component Graphics)
set(options -G ${GENERATOR} -DCMAKE_BUILD_TYPE=Release)
if(TOOLCHAIN)
  # The toolchain file confines packages to the compiler's own root.
  list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
else()
  list(APPEND options -DCMAKE_C_COMPILER=${COMPILER})
endif()
step(${CMAKE_COMMAND} -S ${HOST} -B ${WORK}/build ${options} -DCMAKE_PREFIX_PATH=${prefix})
step(${CMAKE_COMMAND} --build ${WORK}/build)
if(EMULATOR)
  file(COPY ${prefix}/bin/Graphics.dll DESTINATION ${WORK}/build)
  step(${EMULATOR} ${WORK}/build/host.exe)
else()
  step(${WORK}/build/host)
endif()
