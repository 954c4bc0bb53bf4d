// What lies behind a photo: a video, the photo blurred, or nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/base/film_format.h"
#include "host/frames/backdrop_video.h"
#include "host/frames/blurred_photo.h"
#include "host/plan/render_plan.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// The frames of a plan's video in the film's size and in one layout; or its photo, blurred; black
/// where the plan has neither.
class Backdrop {
 public:
  /// Opens the video. `blurred` is the photo where that is to lie behind it, else null. Throws
  /// Error that names the video.
  Backdrop(const RenderPlan& plan, PixelLayout layout, const BlurredPhoto* blurred = nullptr);

  /// Fills `image`, of the film's size and the layout, with what lies behind frame `number`. Frames
  /// may be asked for in any order. Throws Error.
  void Fill(int32_t number, hfxImage& image);

 private:
  std::vector<uint8_t> blackRow_;
  std::vector<uint8_t> still_;            ///< a whole frame; empty for none
  std::unique_ptr<BackdropVideo> video_;  ///< null for none
};

}  // namespace kelto::host
