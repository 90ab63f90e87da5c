# SPDX-License-Identifier: MIT
# The three Debian packages. What a program or the library links decides the dependencies (dpkg-shlibdeps); the packages of one
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

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME graphics-runtime)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "2D graphics with the PDF imaging model: shared library
Graphics fills and strokes paths, paints with gradients and images, draws
text, and composites with the blend modes, soft masks and transparency groups
of the PDF imaging model. The same page has the same bytes on every processor.
.
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
Graphics fills and strokes paths, paints with gradients and images, draws
text, and composites with the blend modes, soft masks and transparency groups
of the PDF imaging model. The same page has the same bytes on every processor.
.
This package contains the header GX/GX.h, the files for pkg-config and CMake,
and an example.")
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME graphics-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "2D graphics with the PDF imaging model: programs
Graphics fills and strokes paths, paints with gradients and images, draws
text, and composites with the blend modes, soft masks and transparency groups
of the PDF imaging model. The same page has the same bytes on every processor.
.
This package contains pdfpage, which draws pages of PDF files, on all cores or
on many machines, and gxreplay, which draws recorded pages.
.
pdfpage contains MuPDF and stands under MuPDF's licence, the GNU Affero
General Public License, version 3 or later; gxreplay is under the MIT licence.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "graphics-runtime (= ${PROJECT_VERSION})")
