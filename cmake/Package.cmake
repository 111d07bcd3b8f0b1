# What `cmake --install` puts where, and the packages that CPack makes of it.
if(WIN32)
  include(cmake/PackageWindows.cmake)
endif()
if(NOT CMAKE_INSTALL_DOCDIR)
  set(CMAKE_INSTALL_DOCDIR share/doc/zavelik)
endif()
include(GNUInstallDirs)

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(TARGETS zavelik RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} BUNDLE DESTINATION .)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

# The guide as pages for a browser, which F1 opens; without the converter, as the text that they are made from.
find_program(ZAVELIK_PANDOC pandoc DOC "Converter of the guide")
if(ZAVELIK_PANDOC)
  set(guide ${PROJECT_BINARY_DIR}/guide)
  file(GLOB pictures CONFIGURE_DEPENDS docs/images/*.png)
  set(converter ${ZAVELIK_PANDOC} --from=gfm --to=html5 --standalone --metadata lang=ru --css guide.css
    --lua-filter ${PROJECT_SOURCE_DIR}/packaging/guide/guide.lua --output)
  set(texts ${PROJECT_SOURCE_DIR}/docs/ru)
  set(pages ${guide}/ru/index.html ${guide}/ru/errors.html)
  add_custom_command(OUTPUT ${pages}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${guide}/ru ${guide}/images
    COMMAND ${CMAKE_COMMAND} -E copy ${pictures} ${guide}/images
    COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_SOURCE_DIR}/packaging/guide/guide.css ${guide}/ru
    COMMAND ${converter} ${guide}/ru/index.html ${texts}/README.md
    COMMAND ${converter} ${guide}/ru/errors.html ${texts}/errors.md
    DEPENDS ${texts}/README.md ${texts}/errors.md ${pictures} packaging/guide/guide.lua packaging/guide/guide.css VERBATIM)
  add_custom_target(guide ALL DEPENDS ${pages})
  install(DIRECTORY ${guide}/ru ${guide}/images DESTINATION ${CMAKE_INSTALL_DOCDIR})
else()
  install(DIRECTORY docs/ru docs/images DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
endif()

if(UNIX AND NOT APPLE)
  set(linux ${PROJECT_SOURCE_DIR}/packaging/linux)
  set(made ${PROJECT_BINARY_DIR}/packaging)
  configure_file(${linux}/zavelik.metainfo.xml.in ${made}/${ZAVELIK_COMPONENT_ID}.metainfo.xml @ONLY)
  install(FILES ${made}/${ZAVELIK_COMPONENT_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

  # Files that name the folder of the guide, which is known when they are installed.
  function(install_with_folder source destination name)
    install(CODE "set(DOCDIR \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DOCDIR}\")
      configure_file(\"${linux}/${source}\" \"${made}/${destination}/${name}\" @ONLY)")
    install(FILES ${made}/${destination}/${name} DESTINATION ${destination})
  endfunction()
  install_with_folder(zavelik.1.in ${CMAKE_INSTALL_MANDIR}/man1 zavelik.1)
  install_with_folder(zavelik.ru.1.in ${CMAKE_INSTALL_MANDIR}/ru/man1 zavelik.1)
  install_with_folder(zavelik.desktop.in ${CMAKE_INSTALL_DATADIR}/applications zavelik.desktop)

  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  foreach(size 16 24 32 48 64 128 256)
    install(FILES packaging/icons/zavelik-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME zavelik.png)
  endforeach()
  install(FILES packaging/icons/zavelik.svg DESTINATION ${icons}/scalable/apps)

  # What some packages have beside that.
  configure_file(${linux}/changelog.in ${made}/debian/changelog @ONLY)
  configure_file(${linux}/copyright.in ${made}/debian/copyright @ONLY)
  set(CPACK_PRE_BUILD_SCRIPTS ${linux}/prepare.cmake)
  set(CPACK_ZAVELIK_DEBIAN ${made}/debian)
  find_file(ZAVELIK_QT_TEXTS qtbase_ru.qm PATHS /usr/share/qt6/translations DOC "Qt's own texts in Russian")
  if(ZAVELIK_QT_TEXTS)
    set(CPACK_ZAVELIK_TEXTS ${ZAVELIK_QT_TEXTS})
  endif()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/packaging/linux/generators.cmake)
set(CPACK_PACKAGE_NAME zavelik)
set(CPACK_PACKAGE_VENDOR "${ZAVELIK_OWNER}")
set(CPACK_PACKAGE_CONTACT "${ZAVELIK_OWNER} <${ZAVELIK_AUTHOR_MAIL}>")
set(CPACK_PACKAGE_HOMEPAGE_URL "${ZAVELIK_HOMEPAGE}")
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
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_LICENSE "${ZAVELIK_PROJECT_LICENSE}")
set(CPACK_RPM_PACKAGE_SUMMARY "Telephone book with an organiser and dialling codes")
set(CPACK_RPM_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_RPM_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_RPM_PACKAGE_GROUP "Applications/Productivity")
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION /usr/share/man /usr/share/man/man1 /usr/share/man/ru
  /usr/share/man/ru/man1 /usr/share/applications /usr/share/metainfo /usr/share/icons /usr/share/icons/hicolor
  /usr/share/icons/hicolor/scalable /usr/share/icons/hicolor/scalable/apps)
foreach(size 16 24 32 48 64 128 256)
  list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION /usr/share/icons/hicolor/${size}x${size}
    /usr/share/icons/hicolor/${size}x${size}/apps)
endforeach()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
include(CPack)
