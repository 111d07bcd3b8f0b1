# What stands beside the program on Windows, in one folder: Qt's libraries, those of the compiler, texts and licences.
set(CMAKE_INSTALL_BINDIR .)
set(CMAKE_INSTALL_DOCDIR doc)
install(FILES $<TARGET_FILE:Qt6::Core> $<TARGET_FILE:Qt6::Gui> $<TARGET_FILE:Qt6::Widgets> DESTINATION .)
install(FILES $<TARGET_FILE:Qt6::QWindowsIntegrationPlugin> DESTINATION plugins/platforms)
install(FILES $<TARGET_FILE:Qt6::QWindowsVistaStylePlugin> DESTINATION plugins/styles)
install(FILES packaging/windows/qt.conf DESTINATION .)

if(MINGW)
  foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    install(FILES ${file} DESTINATION .)
  endforeach()
endif()

set(ZAVELIK_QT_TRANSLATIONS "" CACHE PATH "Folder of Qt's own texts")
install(FILES ${ZAVELIK_QT_TRANSLATIONS}/qtbase_ru.qm DESTINATION translations)
set(ZAVELIK_QT_LICENCES "" CACHE PATH "Folder of the licences of Qt and what it contains")
if(ZAVELIK_QT_LICENCES)
  install(DIRECTORY ${ZAVELIK_QT_LICENCES}/ DESTINATION doc/licences)
endif()
