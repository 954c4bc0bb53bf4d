// The plug-ins of this build.
#pragma once

#include "tests/adapters/plugin.h"

namespace kelto::test {

inline const Plugin& FilterPlugin() {
  static const Plugin plugin(KELTO_FREI0R_FOLDER, "kelto_pan_zoom");
  return plugin;
}
inline const Plugin& SourcePlugin() {
  static const Plugin plugin(KELTO_FREI0R_FOLDER, "kelto_pan_zoom_src");
  return plugin;
}

}  // namespace kelto::test
