# SPDX-License-Identifier: MIT
# cmake -DCLANG= -DLINKER= -DSOURCE= -DINCLUDE= -DLIBRARY=<Graphics.lib> -DDLL= -DWORK= -DEMULATOR= -P ...:
# compiles a host for Microsoft's ABI, links it with Graphics.lib the way Microsoft's linker does, and runs it.
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed (${result}): ${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
# Of Microsoft's headers the public header needs <wchar.h> alone, for a type that the compiler has built in.
file(WRITE ${WORK}/include/wchar.h "#include <stddef.h>\n")
step(${CLANG} --target=x86_64-pc-windows-msvc -std=c11 -Wall -Wextra -pedantic -Werror -O1 -c ${SOURCE}
  -I${INCLUDE} -isystem ${WORK}/include -o ${WORK}/host.obj)
# The two marks of a run-time library that is not there: the entry point, and the sign of floating-point code.
file(WRITE ${WORK}/runtime.c "int _fltused = 1;\n")
step(${CLANG} --target=x86_64-pc-windows-msvc -c ${WORK}/runtime.c -o ${WORK}/runtime.obj)
step(${LINKER} /nologo /entry:main /subsystem:console /nodefaultlib /out:${WORK}/host.exe ${WORK}/host.obj
  ${WORK}/runtime.obj ${LIBRARY})
file(COPY ${DLL} DESTINATION ${WORK})
step(${EMULATOR} ${WORK}/host.exe)
