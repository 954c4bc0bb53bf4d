// Systems where a process cannot begin as a copy of another.
#include "host/base/error.h"
#include "host/jobs/frame_source.h"

namespace kelto::host {

std::unique_ptr<FrameSource> RenderInWorkers(SceneList, int32_t) {
  throw Error("on this system one process renders all frames");
}

}  // namespace kelto::host
