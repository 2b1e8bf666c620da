# Where `cmake --install` puts the programs and what a freedesktop session needs to find the GUI:
# the desktop entry, the application icon, the AppStream metadata and the help page.
include(GNUInstallDirs)
set(QF_APP_ID com.orvelcraft.Quillfeed)
install(TARGETS quillfeed quillfeed-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ui/help/Quillfeed.htm DESTINATION ${CMAKE_INSTALL_DATADIR}/quillfeed)
install(FILES desktop/${QF_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES desktop/${QF_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES desktop/${QF_APP_ID}.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
