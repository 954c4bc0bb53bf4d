#include "host/jobs/slideshow.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "host/base/error.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/frame_source.h"
#include "host/options/rate.h"

namespace kelto::host {
namespace {

/// The pictures take turns in two sources, so that each holds one at a time; while one source's
/// picture is shown, the other loads the next.
std::unique_ptr<FrameSource> OpenTurns(const Slideshow& show, size_t first) {
  SceneList list{show.module, show.kind->layout, {}};
  for (size_t i = first; i < show.plans.size(); i += 2) {
    list.scenes.push_back({show.plans[i], {0, show.plans[i].frames}});
  }
  if (list.scenes.empty()) return nullptr;
  return RenderInWorkers(std::move(list), std::max(1, show.workers / 2));
}

}  // namespace

int32_t SlideshowFrames(const Slideshow& show) {
  int64_t frames = 0;
  for (const RenderPlan& plan : show.plans) frames += plan.frames;
  for (const int32_t fade : show.fades) frames -= fade;
  if (frames > kMaxFrames) {
    throw UsageError("a film of " + std::to_string(frames) + " frames is too long; " +
                     std::to_string(kMaxFrames) + " are the most");
  }
  return static_cast<int32_t>(frames);
}

void MakeSlideshow(const Slideshow& show, const std::function<void(int32_t done)>& shown) {
  const std::array turns = {OpenTurns(show, 0), OpenTurns(show, 1)};
  const std::unique_ptr<FrameSink> film = show.kind->open(show.request);
  CrossFade fade(show.request.format, show.kind->layout, show.fadeKind, show.ends.colour);
  EndFades ends(show.ends, show.request.format, show.kind->layout, show.request.frames);
  int32_t done = 0;
  const auto write = [&](const FrameView& frame) {
    film->Write(ends.Of(frame, done));
    shown(++done);
  };
  for (size_t i = 0; i < show.plans.size(); ++i) {
    const int32_t before = i > 0 ? show.fades[i - 1] : 0;
    const int32_t after = i + 1 < show.plans.size() ? show.fades[i] : 0;
    const int32_t alone = show.plans[i].frames - before - after;
    for (int32_t frame = 0; frame < alone; ++frame) write(turns[i % 2]->Next());
    for (int32_t step = 0; step < after; ++step) {
      const FrameView from = turns[i % 2]->Next();
      write(fade.Blend(from, turns[(i + 1) % 2]->Next(), step, after));
    }
  }
  film->Finish();
}

}  // namespace kelto::host
