// Everything there is to know of a frame before it is rendered.
#pragma once

#include <cstdint>
#include <string>

#include "framing/drawn_area.h"
#include "host/effect/photo.h"
#include "host/facts/motion.h"
#include "host/plan/render_plan.h"
#include "host/track/planned_stops.h"
#include "motion/window.h"

namespace kelto::host {

struct FrameFacts {
  int32_t number = 0;    ///< 0-based
  int32_t field = 0;     ///< 0 or 1, the second in time of an interlaced film's frame
  double seconds = 0.0;  ///< from the beginning of the film
  double time = 0.0;     ///< on the scale of key times, 0..1
  /// Of the view since the moment before; the first's is the second's. The perceived one is that
  /// along the way, where a motion law of the host's leads it: also where it turns back in between.
  motion::Speed speed;
  View view;           ///< where the keys look, whatever the display shows
  DrawnArea area;      ///< of what the frame draws: the view, or in the source display the photo
  std::string filter;  ///< in force: entry of the list "filter"
};

/// The facts of a plan's frames.
class FrameInspector {
 public:
  /// `photo` is the plan's, opened; `quality` is that of renders.
  FrameInspector(const std::string& modulePath, const RenderPlan& plan, const Photo& photo,
                 double quality = 1.0);

  const RenderPlan& Plan() const { return plan_; }
  FrameFacts Of(int32_t number, int32_t field = 0);
  /// The part of the photo that the view shows at a frame, also where the display is the source.
  DrawnArea ViewArea(const FrameFacts& facts) const;

 private:
  /// A frame, or one field of it.
  struct Moment {
    int32_t number = 0, field = 0;
    bool operator==(const Moment&) const = default;
  };
  DrawnArea Area(const FrameFacts& facts, const View& view) const;
  /// The speed at `moment`, whose motion is known.
  motion::Speed SpeedAt(const Moment& moment, const FrameMotion& motion);
  FrameMotion MotionAt(const Moment& moment);

  RenderPlan plan_;
  PixelSize photo_;
  double quality_;
  Motion motion_;
  bool squarePixels_ = true;  ///< the same in all frames
  double shape_;              ///< height over width of what zoom 1 shows
  Moment lastMoment_{-1, 0};  ///< the one asked for last, and its motion
  FrameMotion lastMotion_;
};

}  // namespace kelto::host
