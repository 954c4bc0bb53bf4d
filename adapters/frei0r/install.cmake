# `cmake --install BUILD --component frei0r --prefix FOLDER` puts the plug-ins into FOLDER, one that
# hosts search, and what they need into FOLDER/kelto. Some hosts try every .so below FOLDER, so the
# libraries there have names that end in a version.
set(plugins kelto_pan_zoom kelto_pan_zoom_src)
set(libraries kelto_frei0r hfx kelto_ipl kelto_win32)
set_target_properties(${libraries} PROPERTIES SOVERSION 1)

# Wherever the plug-ins lie, their libraries are in the folder below: installed as above, as links in
# the build tree, as one link in a package.
kelto_search_path(TARGETS ${plugins} FOLDERS kelto)
set(below ${CMAKE_BINARY_DIR}/lib/frei0r-1/kelto)
file(MAKE_DIRECTORY ${below})
foreach(library ${libraries})
  file(CREATE_LINK ../../lib${library}.so.1 ${below}/lib${library}.so.1 SYMBOLIC)
endforeach()

install(TARGETS ${plugins} LIBRARY DESTINATION . COMPONENT frei0r EXCLUDE_FROM_ALL)
install(TARGETS ${libraries} KeltoPanAndZoom
  LIBRARY DESTINATION kelto COMPONENT frei0r EXCLUDE_FROM_ALL NAMELINK_SKIP)
