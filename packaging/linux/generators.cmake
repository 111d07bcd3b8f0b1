# Run by CPack once for each kind of package.
if(CPACK_GENERATOR STREQUAL "TGZ")
  # Unpacked anywhere, it is started as bin/zavelik; Qt is the system's.
  set(CPACK_PACKAGING_INSTALL_PREFIX /)
  set(CPACK_PACKAGE_FILE_NAME "zavelik-${CPACK_PACKAGE_VERSION}-linux-${CMAKE_HOST_SYSTEM_PROCESSOR}")
  if(NOT CMAKE_HOST_SYSTEM_PROCESSOR)
    execute_process(COMMAND uname -m OUTPUT_VARIABLE processor OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(CPACK_PACKAGE_FILE_NAME "zavelik-${CPACK_PACKAGE_VERSION}-linux-${processor}")
  endif()
endif()
