// What the effect makes of a plan's keys, frame by frame.
//
// The effect writes each frame's view into the fields that its parameters are bound to, where any
// host can read it. So the numbers are asked of the module itself, by having it render frames of
// four pixels without a picture, which takes microseconds.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/options/view.h"
#include "host/plan/render_plan.h"
#include "host/track/view_track.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// What settles a frame's look.
struct FrameMotion {
  View view;
  /// The perceived length of the way up to there, where a motion law of the host's leads it.
  std::optional<double> length;
  bool target = true;        ///< "Display: Target": the view, not what zoom 1 shows
  bool squarePixels = true;  ///< of the photo
  std::string filter;        ///< entry of the list "filter"
  bool overVideo = false;  ///< "Background: Video": that shows beside the photo, else this colour:
  std::array<double, 3> background{};  ///< value of "bgcolor": red, green, blue
};

/// Asks an instance of its own of the module's first effect. Operations throw Error.
class Motion {
 public:
  /// `photo` in pixels, upright.
  Motion(const std::string& modulePath, const RenderPlan& plan, PixelSize photo);
  ~Motion();
  Motion(const Motion&) = delete;
  Motion& operator=(const Motion&) = delete;

  /// The motion at frame `number`, 0-based; of an interlaced film, at one of its fields, 0 the
  /// first in time.
  FrameMotion At(int32_t number, int32_t field = 0);

 private:
  RenderPlan plan_;
  std::unique_ptr<const ViewTrack> track_;  ///< null where the effect's keys make the move
  hfx::ImageBuffer input_, output_;
  std::unique_ptr<hfx::Module> module_;
  std::unique_ptr<hfx::Effect> effect_;  // goes before its module
};

}  // namespace kelto::host
