# SPDX-License-Identifier: MIT
# Run by CPack between installing and packing: brings the files into the state in which they are packed. Debian wants
# manual pages and change logs compressed; and the times of all files are one time, so that two builds give the same bytes.
if(CPACK_GENERATOR STREQUAL "DEB")
  execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -type f ( -path "*/share/man/*" -o -name changelog )
    -exec gzip -9nf {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} {} +
  COMMAND_ERROR_IS_FATAL ANY)
