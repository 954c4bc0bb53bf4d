# `cmake --install BUILD --component frei0r --prefix FOLDER` puts the plug-ins into FOLDER, one that
# hosts search, and what they need into FOLDER/kelto. Some hosts try every .so below FOLDER, so the
# libraries there have names that end in a version.
set(plugins kelto_pan_zoom kelto_pan_zoom_src)
set(libraries kelto_frei0r hfx kelto_ipl kelto_win32)
set_target_properties(${libraries} PROPERTIES SOVERSION 1)

# Found from where they lie, in the build folder and installed alike.
set_target_properties(${plugins} PROPERTIES INSTALL_RPATH "$ORIGIN/kelto")
set_target_properties(${libraries} KeltoPanAndZoom PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS ${plugins} LIBRARY DESTINATION . COMPONENT frei0r EXCLUDE_FROM_ALL)
install(TARGETS ${libraries} KeltoPanAndZoom
  LIBRARY DESTINATION kelto COMPONENT frei0r EXCLUDE_FROM_ALL NAMELINK_SKIP)
