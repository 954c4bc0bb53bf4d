// Systems where a process cannot begin as a copy of another: this one renders all frames.
#include <utility>

#include "host/jobs/frame_source.h"
#include "host/jobs/scene_renderer.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

class LocalFrames : public FrameSource {
 public:
  explicit LocalFrames(SceneList list)
      : list_(std::move(list)), cursor_(list_), renderer_(list_, IsInterrupted) {}

  FrameView Next() override {
    const ScenePlace place = cursor_.Place();
    cursor_.Advance();
    return renderer_.Render(place.scene, place.number);
  }

 private:
  SceneList list_;
  SceneCursor cursor_;
  SceneRenderer renderer_;
};

}  // namespace

std::unique_ptr<FrameSource> RenderInWorkers(SceneList list, int32_t) {
  NoteFiles(list);
  return std::make_unique<LocalFrames>(std::move(list));
}

}  // namespace kelto::host
