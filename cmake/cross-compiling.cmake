# SPDX-License-Identifier: MIT
# What all toolchain files share: programs are the machine's, libraries and headers the target's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
if(NOT DEFINED CMAKE_FIND_ROOT_PATH_MODE_PACKAGE) # a host that finds an installed Graphics says BOTH
  set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
endif()
