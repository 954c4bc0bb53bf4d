#include "host/jobs/scene_renderer.h"

#include <utility>

#include "host/effect/photo.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

class LocalFrames : public FrameSource {
 public:
  explicit LocalFrames(SceneList list)
      : list_(std::move(list)),
        cursor_(list_),
        renderer_(list_, [] { return InterruptSignal() != 0; }) {}

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

SceneRenderer::SceneRenderer(SceneList list, std::function<bool()> aborted)
    : list_(std::move(list)), aborted_(std::move(aborted)), open_(list_.scenes.size()) {}

FrameView SceneRenderer::Render(size_t scene, int32_t number) { return Open(scene).Render(number); }

void SceneRenderer::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, size_t scene, int32_t number) {
  Open(scene).RenderInto(pixels, rowBytes, number);
}

EffectSession& SceneRenderer::Open(size_t scene) {
  if (scene == open_) return *session_;
  // First the old one goes: two pictures at a time would take turns in the module's memory.
  session_.reset();
  open_ = list_.scenes.size();
  const RenderPlan& plan = list_.scenes[scene].plan;
  session_ =
      std::make_unique<EffectSession>(list_.module, plan, OpenPhoto(plan.photo), list_.layout);
  session_->SetAbortQuery(aborted_);
  open_ = scene;
  return *session_;
}

std::unique_ptr<FrameSource> RenderHere(SceneList list) {
  return std::make_unique<LocalFrames>(std::move(list));
}

}  // namespace kelto::host
