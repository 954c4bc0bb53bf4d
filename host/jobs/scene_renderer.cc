#include "host/jobs/scene_renderer.h"

#include <utility>

#include "host/base/error.h"
#include "host/deep/shown_film.h"
#include "host/effect/photo.h"
#include "host/sandbox/sandbox.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
SceneRenderer::SceneRenderer(SceneList list, std::function<bool()> aborted)
    : list_(std::move(list)), aborted_(std::move(aborted)), open_(list_.scenes.size()) {}

FrameView SceneRenderer::Render(size_t scene, int32_t number) {
  Open(scene);
  const FrameView frame = session_->Render(number, kWholeQuality);
  Settle();
  return frame;
}

void SceneRenderer::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, size_t scene, int32_t number) {
  Open(scene);
  session_->RenderInto(pixels, rowBytes, number, kWholeQuality);
  Settle();
}

void SceneRenderer::Open(size_t scene) {
  if (scene == open_) return;
  // First the old one goes: two pictures at a time would take turns in the module's memory.
  session_.reset();
  open_ = list_.scenes.size();
  const RenderPlan& plan = list_.scenes[scene].plan;
  const InterruptsEndAtOnce whileItLoads;
  photo_ = std::make_unique<HeldFile>(plan.photo);
  // Before they are read, too: the sandbox keeps this process from files that took their places.
  CheckFiles(list_.scenes[scene]);
  CheckNotReplaced(plan.photo);
  CheckNotReplaced(plan.over);
  Photo photo = OpenPhoto(PhotoName(plan));
  // Where the system has no other path of an open file, the name that the effect can open stays.
  if (std::string held = photo_->Path(); held != plan.photo) photo.path = NameAt(held, photo);
  session_ = OpenSession(list_.module, plan, photo, list_.layout);
  session_->SetAbortQuery(aborted_);
  CheckFiles(list_.scenes[scene]);
  settled_ = false;
  open_ = scene;
}

void SceneRenderer::Settle() {
  // The first frame may have the effect load the photo again: for fields, or other levels.
  if (!std::exchange(settled_, true)) CheckFiles(list_.scenes[open_]);
}

void SceneRenderer::CheckFiles(const Scene& scene) const {
  const auto check = [](const std::string& name, bool same) {
    if (!same)
      throw Error(name + ": was changed or replaced while the film was made; make it again");
  };
  check(scene.plan.photo, photo_->State() == scene.photo);
  check(scene.plan.over, FileStateOf(scene.plan.over) == scene.over);
}

void NoteFiles(SceneList& list) {
  for (Scene& scene : list.scenes) {
    scene.photo = FileStateOf(scene.plan.photo);
    scene.over = FileStateOf(scene.plan.over);
  }
}

}  // namespace kelto::host
