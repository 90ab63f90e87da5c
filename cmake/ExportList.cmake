# SPDX-License-Identifier: MIT
# gx_export_list(HEADER FILE): writes a module-definition file with the functions that the header declares, and nothing
# else. It is made anew when the header changes.
function(gx_export_list header file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  file(STRINGS ${header} lines REGEX "^GX_API GXResult GX[A-Za-z0-9]+")
  list(TRANSFORM lines REPLACE "^GX_API GXResult (GX[A-Za-z0-9]+).*" "    \\1")
  list(LENGTH lines count)
  if(count EQUAL 0)
    message(FATAL_ERROR "No functions found in ${header}")
  endif()
  list(SORT lines)
  list(JOIN lines "\n" names)
  file(CONFIGURE OUTPUT ${file} CONTENT "LIBRARY Graphics\nEXPORTS\n${names}\n" @ONLY)
endfunction()

# gx_import_library(TARGET DEF FILE): makes, beside the import archive of mingw-w64, the same list as a COFF import library
# under the name that Microsoft's linker and lld-link look for. Left out where there is no tool for it.
function(gx_import_library target def file)
  find_program(GX_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 x86_64-w64-mingw32-dlltool ${CMAKE_DLLTOOL})
  if(GX_DLLTOOL)
    add_custom_command(OUTPUT ${file} DEPENDS ${def} VERBATIM
      COMMAND ${GX_DLLTOOL} -m i386:x86-64 -D Graphics.dll -d ${def} -l ${file}
      COMMENT "Import library for Microsoft's linker")
    add_custom_target(${target}_lib ALL DEPENDS ${file})
    install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  endif()
endfunction()
