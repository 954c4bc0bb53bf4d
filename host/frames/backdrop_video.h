// A video behind a photo, where the build can read videos.
#pragma once

#include <cstdint>
#include <memory>

#include "host/base/film_format.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

class BackdropVideo {
 public:
  virtual ~BackdropVideo() = default;
  /// Frame `number` of the film, in its size and layout. Frames may be asked for in any order; the
  /// view holds until the next call. Throws Error.
  virtual FrameView Frame(int32_t number) = 0;
};

/// The plan's video, which it has; warns where the video ends before the film. Throws Error that
/// names the file, also where the build reads no videos.
std::unique_ptr<BackdropVideo> OpenBackdropVideo(const RenderPlan& plan, PixelLayout layout);

}  // namespace kelto::host
