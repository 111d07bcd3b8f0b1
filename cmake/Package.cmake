# What `cmake --install` puts where, and the Debian package that CPack makes of it.
include(GNUInstallDirs)

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(TARGETS zavelik RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} BUNDLE DESTINATION .)

if(UNIX AND NOT APPLE)
  set(linux ${PROJECT_SOURCE_DIR}/packaging/linux)
  set(made ${PROJECT_BINARY_DIR}/packaging)
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/zavelik)

  configure_file(${linux}/org.example.zavelik.metainfo.xml.in ${made}/org.example.zavelik.metainfo.xml @ONLY)
  configure_file(${linux}/changelog.in ${made}/changelog @ONLY)

  # Compressed without name and time, so that the same tree gives the same package.
  function(install_compressed source destination name)
    set(compressed ${made}/${destination}/${name}.gz)
    get_filename_component(folder ${compressed} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${compressed} DESTINATION ${destination})
  endfunction()
  install_compressed(${made}/changelog ${documents} changelog)
  install_compressed(${linux}/zavelik.1 ${CMAKE_INSTALL_MANDIR}/man1 zavelik.1)
  install_compressed(${linux}/zavelik.ru.1 ${CMAKE_INSTALL_MANDIR}/ru/man1 zavelik.1)

  install(FILES ${linux}/zavelik.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${made}/org.example.zavelik.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${linux}/zavelik-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME zavelik.xml)
  install(FILES ${linux}/copyright DESTINATION ${documents})
  install(DIRECTORY docs/ru docs/images DESTINATION ${documents} FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  foreach(size 16 24 32 48 64 128 256)
    install(FILES packaging/icons/zavelik-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME zavelik.png)
  endforeach()
  install(FILES packaging/icons/zavelik.svg DESTINATION ${icons}/scalable/apps)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zavelik)
set(CPACK_PACKAGE_VENDOR "Zavelik developers")
set(CPACK_PACKAGE_CONTACT "Zavelik developers <${ZAVELIK_AUTHOR_MAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "telephone book with an organiser and dialling codes")
set(CPACK_PACKAGE_DESCRIPTION
  "A telephone book for one person, with a Russian user interface. It keeps\n\
address cards with phone numbers, an organiser with birthdays and events and\n\
a table of Russian dialling codes, all in one file. Cards are found with\n\
wildcards, come and go as CSV files, and can be asked by SQL.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The texts of the buttons in Russian; the tools cannot see that.
set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-translations-l10n)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
include(CPack)
