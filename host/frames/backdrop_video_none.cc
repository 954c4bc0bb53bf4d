#include "host/base/error.h"
#include "host/frames/backdrop_video.h"

namespace kelto::host {

std::unique_ptr<BackdropVideo> OpenBackdropVideo(const RenderPlan& plan, PixelLayout) {
  throw Error(plan.over + ": this command reads no videos");
}

}  // namespace kelto::host
