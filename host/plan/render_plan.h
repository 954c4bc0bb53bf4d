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
#include "host/plan/tour.h"

namespace kelto::host {

/// Where the view is at a time (0..1 over the film), and how it comes and goes: texts of the lists
/// "invelocity" and "outvelocity".
struct ViewKey {
  double time = 0.0;
  View view;
  std::string arrival;
  std::string departure;
};

/// Whether a parameter is one of those in whose place a list of views may stand: "size",
/// "position", "invelocity", "outvelocity".
bool MovesTheView(const std::string& parameter);

/// What is seen where the frame shows more than the photo and there is no video.
enum class Beside {
  kColour,  ///< the background colour
  kBlur,    ///< the photo itself, enlarged, blurred and darkened
};

/// Text over a film's frames.
struct Caption {
  std::string text{};  ///< UTF-8; empty for none
  /// The frames that have it: the first, and the one behind the last; 0 for the film's end.
  int32_t from = 0, until = 0;
  bool operator==(const Caption&) const = default;
};

struct RenderPlan {
  std::string photo;
  /// Degrees by which the photo is turned clockwise beyond what its file says: 0, 90, 180 or 270.
  /// Views are of the photo as it is then.
  int32_t rotate = 0;
  std::string over{};   ///< the video behind the photo; empty for none
  std::string audio{};  ///< file whose sound goes into the film; empty for none
  FilmFormat format;
  int32_t frames = 1;
  std::vector<Setting> settings;  ///< one for each parameter at most
  /// Where the view looks over time. While there are any, "size", "position", "invelocity" and
  /// "outvelocity" have no settings; the times are scaled to the film's length.
  std::vector<TourView> views;
  MotionLaw motion = MotionLaw::kLinear;  ///< how the view goes from key to key
  int32_t playMode = 0;                   ///< a hfxPlayMode
  /// Whether the film is to be played over and over: its list of views ends with the first one,
  /// which the frame after the film's last one would show.
  bool loop = false;
  Caption caption{};
  Beside beside = Beside::kColour;
  // Frames of which one of these is true are drawn by the command itself, with 16 bits a channel.
  bool transparent = false;  ///< whether nothing lies beside and behind the photo
  bool linearLight = false;  ///< whether the filters mix light instead of levels

  /// The setting of `parameter`, added when there is none yet.
  Setting& SettingOf(const std::string& parameter);
  /// The same, null when there is none.
  const Setting* FindSetting(const std::string& parameter) const;
  /// Sets `parameter` to one value for the whole film.
  void Set(const std::string& parameter, const SettingValue& value);
  /// Sets "size", "position", "invelocity" and "outvelocity" in place of the list of views. The
  /// effect takes no notice of a single key: a view that stands still is two equal keys.
  void SetViews(std::span<const ViewKey> keys);
  /// Sets the list of views, of one at least, in place of these four.
  void SetTour(std::vector<TourView> tour);
  /// Sets "invelocity" or "outvelocity" for every view or key there is.
  void SetVelocity(const std::string& parameter, const std::string& entry);
};

/// The value of the effect's parameter "bgcolor" that is seen as `colour` in the film.
std::array<double, 3> BackgroundFor(Colour colour);

/// The colour that is seen where the effect is given `background`: the inverse of BackgroundFor.
Colour ColourOf(const std::array<double, 3>& background);

}  // namespace kelto::host
