# SPDX-License-Identifier: MIT
# The Debian packages. What a program or the library links decides the dependencies (dpkg-shlibdeps); the packages of one
# build depend on each other in exactly its version.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${GX_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64") # otherwise that of the machine that packs
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
# The tools' own library is found where it was built; it has no package yet, so its dependency is written below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What descriptions have in common.
set(about "Graphics fills and strokes paths, paints with gradients and images, draws
text, and composites with the blend modes, soft masks and transparency groups
of the PDF imaging model. The same page has the same bytes on every processor.
.")
set(affero "contains MuPDF and stands under MuPDF's licence, the GNU Affero
General Public License, version 3 or later")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME graphics-runtime)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "2D graphics with the PDF imaging model: shared library
${about}
This package contains the shared library.")
# Hosts that link the library get their dependency from the symbols that they use.
configure_file(debian/graphics-runtime.symbols.in ${CMAKE_CURRENT_BINARY_DIR}/control/symbols @ONLY)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/control/shlibs
  "libGraphics ${GX_SOVERSION} graphics-runtime (>= ${PROJECT_VERSION})\n")
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/control/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/control/symbols
  ${CMAKE_CURRENT_BINARY_DIR}/control/shlibs ${CMAKE_CURRENT_BINARY_DIR}/control/triggers)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME graphics-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DESCRIPTION "2D graphics with the PDF imaging model: development files
${about}
This package contains the header GX/GX.h, the files for pkg-config and CMake,
and an example.")
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME graphics-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "2D graphics with the PDF imaging model: programs
${about}
This package contains pdfpage, which draws pages of PDF files, on all cores or
on many machines, and gxreplay, which draws recorded pages.
.
pdfpage ${affero}; gxreplay is under the MIT licence.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS graphics-viewer)

set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME graphics-viewer)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_VIEWER_DESCRIPTION "2D graphics with the PDF imaging model: viewer
${about}
This package contains gxviewer, which shows PDF files and recorded pages in a
window and draws them on all cores.
.
gxviewer ${affero}.")
set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION})")

# The module is of Python's stable ABI; what it needs of cffi is the version of the interface that its code was generated for,
# 0x2601 or 9729 since cffi 1.0. Python's files are compiled, and what that left is removed, by Debian's own commands.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-gxgraphics)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "2D graphics with the PDF imaging model: Python package
${about}
This package contains gxgraphics for Python 3: every function of the library
through cffi, and classes above it, with NumPy arrays as pixels and points.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION}), python3 (>= 3.9~), \
python3-cffi-backend-api-min (<= 9729), python3-cffi-backend-api-max (>= 9729), python3-numpy (>= 1:1.20)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-pil)
foreach(step postinst prerm)
  configure_file(debian/python.${step}.in ${CMAKE_CURRENT_BINARY_DIR}/control/${step} @ONLY FILE_PERMISSIONS OWNER_READ
    OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endforeach()
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/control/postinst
  ${CMAKE_CURRENT_BINARY_DIR}/control/prerm)
