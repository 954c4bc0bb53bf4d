// Everything that settles what a film shows, as the command line or a project file says it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/film/film_format.h"
#include "host/options/colour.h"
#include "host/options/view.h"

namespace kelto::host {

/// Sets a list parameter for the whole film; `entry` is the list's own text.
struct ListSetting {
  std::string parameter;
  std::string entry;
};

/// Where the view is at a time (0..1 over the film), and how it comes and goes: texts of the lists
/// "invelocity" and "outvelocity".
struct ViewKey {
  double time = 0.0;
  View view;
  std::string arrival;
  std::string departure;
};

struct RenderPlan {
  std::string photo;
  FilmFormat format;
  int32_t frames = 1;
  /// In order of time. The effect takes no notice of a single one: a view that stands still is two
  /// equal keys.
  std::vector<ViewKey> keys;
  std::vector<ListSetting> lists;
  Colour background;  ///< as seen in the film
  int32_t playMode = 0;
};

}  // namespace kelto::host
