# Run by CPack between installing into a folder and packing it: changelog, copyright and compressed manual pages, as Debian
# wants them. Compressed without name and time, so that the same tree gives the same package.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(COPY ${CPACK_ZAVELIK_DEBIAN}/changelog ${CPACK_ZAVELIK_DEBIAN}/copyright DESTINATION ${root}/doc/zavelik)
file(GLOB_RECURSE pages ${root}/man/*.1)
foreach(file ${root}/doc/zavelik/changelog ${pages})
  execute_process(COMMAND gzip -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
