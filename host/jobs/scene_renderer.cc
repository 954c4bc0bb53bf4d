#include "host/jobs/scene_renderer.h"

#include <cstring>
#include <utility>

#include "host/error.h"
#include "host/session/photo.h"
#include "host/terminal/interrupt.h"
#if defined(KELTO_FFMPEG)
#include "host/video/video_reader.h"
#else
namespace kelto::host {
class VideoReader {};
}  // namespace kelto::host
#endif

namespace kelto::host {
namespace {

#if defined(KELTO_FFMPEG)
void CopyTo(const FrameView& frame, PixelLayout layout, hfxImage& image) {
  const size_t bytes = static_cast<size_t>(frame.size.width) * BytesPerPixel(layout);
  for (int32_t row = 0; row < frame.size.height; ++row) {
    std::memcpy(image.GetRowPtr(row), frame.Row(row), bytes);
  }
}
#endif

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

SceneRenderer::~SceneRenderer() = default;

FrameView SceneRenderer::Render(size_t scene, int32_t number) {
  Prepare(scene, number);
  return session_->Render(number);
}

void SceneRenderer::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, size_t scene, int32_t number) {
  Prepare(scene, number);
  session_->RenderInto(pixels, rowBytes, number);
}

void SceneRenderer::Prepare(size_t scene, [[maybe_unused]] int32_t number) {
  if (scene != open_) Open(scene);
#if defined(KELTO_FFMPEG)
  if (video_) CopyTo(video_->Frame(number), list_.layout, session_->Input());
#endif
}

void SceneRenderer::Open(size_t scene) {
  // First the old one goes: two pictures at a time would take turns in the module's memory.
  session_.reset();
  video_.reset();
  open_ = list_.scenes.size();
  const RenderPlan& plan = list_.scenes[scene].plan;
  session_ =
      std::make_unique<EffectSession>(list_.module, plan, OpenPhoto(plan.photo), list_.layout);
  session_->SetAbortQuery(aborted_);
  if (!plan.over.empty()) {
#if defined(KELTO_FFMPEG)
    video_ = std::make_unique<VideoReader>(plan.over, plan.format, list_.layout);
#else
    throw Error(plan.over + ": this command reads no videos");
#endif
  }
  open_ = scene;
}

std::unique_ptr<FrameSource> RenderHere(SceneList list) {
  return std::make_unique<LocalFrames>(std::move(list));
}

}  // namespace kelto::host
