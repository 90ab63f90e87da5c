# SPDX-License-Identifier: MIT
# gx_copyright(FILE HEADING INTRODUCTION [PACKAGE...]): writes the copyright file of a package: what is in it and under which
# terms, the library's licence, Boost's, and the copyright files of the packages whose code the linker put into the binaries.
# Those are taken from the machine that builds, so that they belong to the versions that were linked.
function(gx_copyright file heading introduction)
  file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
  file(READ ${PROJECT_SOURCE_DIR}/packaging/licences/BSL-1.0.txt boost)
  set(rule "\n------------------------------------------------------------------------------\n\n")
  set(text "${heading}\n\n${introduction}${rule}${licence}${rule}Boost (headers):\n\n${boost}")
  foreach(package IN LISTS ARGN)
    set(other /usr/share/doc/${package}/copyright)
    if(NOT EXISTS ${other})
      message(FATAL_ERROR "Its copyright file is part of the packages, but is not here: ${other}")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${other})
    file(READ ${other} notice)
    execute_process(COMMAND dpkg-query -W -f "\${source:Package} \${source:Version}" ${package}
      OUTPUT_VARIABLE source COMMAND_ERROR_IS_FATAL ANY)
    string(APPEND text "${rule}Linked in, from Debian's source package ${source} (package ${package}). Its copyright file:\n\n"
      "${notice}")
  endforeach()
  file(WRITE ${file} "${text}")
endfunction()
