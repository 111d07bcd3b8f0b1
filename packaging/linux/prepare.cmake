# Run by CPack between installing into a folder and packing it.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share)

if(CPACK_GENERATOR STREQUAL "DEB")
  file(COPY ${CPACK_ZAVELIK_DEBIAN}/changelog ${CPACK_ZAVELIK_DEBIAN}/copyright DESTINATION ${root}/doc/zavelik)
else()
  # Qt's own texts, where it has any, for systems whose package of them goes by another name or is not installed.
  file(COPY ${CPACK_ZAVELIK_TEXTS} DESTINATION ${root}/zavelik/translations)
endif()

# What a system's package has compressed. Without name and time, so that the same tree gives the same package.
if(NOT CPACK_GENERATOR STREQUAL "TGZ")
  file(GLOB_RECURSE files ${root}/man/*.1 ${root}/doc/zavelik/changelog)
  foreach(file ${files})
    execute_process(COMMAND gzip -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endif()
