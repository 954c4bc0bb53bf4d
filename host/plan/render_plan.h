// Everything that settles what a film shows, as the command line or a project file says it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/base/film_format.h"
#include "host/options/colour.h"
#include "host/options/motion_law.h"
#include "host/options/view.h"
#include "host/plan/setting.h"

namespace kelto::host {

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
  std::string over{};   ///< the video behind the photo; empty for none
  std::string audio{};  ///< file whose sound goes into the film; empty for none
  FilmFormat format;
  int32_t frames = 1;
  std::vector<Setting> settings;          ///< one for each parameter at most
  MotionLaw motion = MotionLaw::kLinear;  ///< how the view goes from key to key
  int32_t playMode = 0;                   ///< a hfxPlayMode

  /// The setting of `parameter`, added when there is none yet.
  Setting& SettingOf(const std::string& parameter);
  /// The same, null when there is none.
  const Setting* FindSetting(const std::string& parameter) const;
  /// Sets `parameter` to one value for the whole film.
  void Set(const std::string& parameter, const SettingValue& value);
  /// Sets "size", "position", "invelocity" and "outvelocity". The effect takes no notice of a
  /// single key: a view that stands still is two equal keys.
  void SetViews(std::span<const ViewKey> keys);
};

/// The value of the effect's parameter "bgcolor" that is seen as `colour` in the film.
std::array<double, 3> BackgroundFor(Colour colour);

}  // namespace kelto::host
