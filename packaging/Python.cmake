# SPDX-License-Identifier: MIT
# python3-gxgraphics: the package of bindings/python for Debian's interpreter. CMake compiles the module that
# build_native.py describes, so that paths, symbols and the search for the library are those of all other files packed here.
set(sources ${PROJECT_SOURCE_DIR}/bindings/python)
find_program(GX_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
execute_process(COMMAND ${GX_PYTHON} -c "import sysconfig; print(sysconfig.get_paths()['include'], end='')"
  OUTPUT_VARIABLE include COMMAND_ERROR_IS_FATAL ANY)
# The header is chosen by the processor, so a cross build takes those of its own root.
if(CMAKE_CROSSCOMPILING)
  string(PREPEND include "${CMAKE_SYSROOT}")
  if(NOT EXISTS ${include}/Python.h)
    message(STATUS "packages: no headers of Python (libpython3-dev) in ${CMAKE_SYSROOT}, python3-gxgraphics is left out")
    return()
  endif()
endif()

set(generated ${CMAKE_CURRENT_BINARY_DIR}/python/_native.c)
file(GLOB helpers CONFIGURE_DEPENDS ${sources}/native/*)
set(header ${PROJECT_SOURCE_DIR}/src/Graphics/source/Interface)
add_custom_command(OUTPUT ${generated}
  COMMAND ${CMAKE_COMMAND} -E env GX_INCLUDE=${header} GX_LIBRARY=$<TARGET_FILE_DIR:Graphics> PYTHONDONTWRITEBYTECODE=1
    ${GX_PYTHON} ${sources}/build_native.py ${generated}
  DEPENDS Graphics ${sources}/build_native.py ${header}/GX/GX.h ${helpers} VERBATIM)
list(FILTER helpers INCLUDE REGEX "\\.c$")
add_library(gxgraphics_native MODULE ${generated} ${helpers})
set_target_properties(gxgraphics_native PROPERTIES OUTPUT_NAME _native PREFIX "" SUFFIX .abi3.so
  LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/python)
target_include_directories(gxgraphics_native PRIVATE ${sources}/native)
target_include_directories(gxgraphics_native SYSTEM PRIVATE ${include})
target_link_libraries(gxgraphics_native PRIVATE Graphics gx_options)
target_link_options(gxgraphics_native PRIVATE -Wl,-z,relro -Wl,-z,now)
# cffi's code is not written for the warnings of this tree.
set_source_files_properties(${generated} PROPERTIES COMPILE_OPTIONS -w)
add_dependencies(packaged gxgraphics_native)

list(APPEND CPACK_COMPONENTS_ALL python)

# What pip and importlib.metadata know an installed package by.
file(READ ${sources}/pyproject.toml project)
string(REGEX MATCH "\nversion = \"([^\"]+)\"" ignored "${project}")
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "bindings/python/pyproject.toml has version ${CMAKE_MATCH_1}, the library ${PROJECT_VERSION}")
endif()
string(REGEX MATCH "\ndescription = \"([^\"]+)\"" ignored "${project}")
set(GX_PYTHON_SUMMARY ${CMAKE_MATCH_1})
configure_file(debian/python.metadata.in ${CMAKE_CURRENT_BINARY_DIR}/python/METADATA @ONLY)

# Debian's folder for packages of every version of Python 3; no part of the archive, which has no such folder.
set(packages lib/python3/dist-packages)
install(DIRECTORY ${sources}/src/gxgraphics DESTINATION ${packages} COMPONENT python EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
install(TARGETS gxgraphics_native LIBRARY DESTINATION ${packages}/gxgraphics COMPONENT python EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/python/METADATA DESTINATION ${packages}/gxgraphics-${PROJECT_VERSION}.dist-info
  COMPONENT python EXCLUDE_FROM_ALL)
gx_documents(python python3-gxgraphics copyright EXCLUDE_FROM_ALL)
install(DIRECTORY ${sources}/examples DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/python3-gxgraphics COMPONENT python
  EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.py")
