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
    list.scenes.push_back({show.plans[i], {0, show.each}});
  }
  if (list.scenes.empty()) return nullptr;
  return RenderInWorkers(std::move(list), std::max(1, show.workers / 2));
}

}  // namespace

int32_t SlideshowFrames(size_t pictures, int32_t each, int32_t fade) {
  const int64_t count = static_cast<int64_t>(pictures);
  const int64_t frames = count * each - (count - 1) * fade;
  if (frames > kMaxFrames) {
    throw UsageError("a film of " + std::to_string(frames) + " frames is too long; " +
                     std::to_string(kMaxFrames) + " are the most");
  }
  return static_cast<int32_t>(frames);
}

void MakeSlideshow(const Slideshow& show, const std::function<void(int32_t done)>& shown) {
  const std::array turns = {OpenTurns(show, 0), OpenTurns(show, 1)};
  const std::unique_ptr<FrameSink> film = show.kind->open(show.request);
  CrossFade fade(show.request.format, show.kind->layout);
  int32_t done = 0;
  const auto write = [&](const FrameView& frame) {
    film->Write(frame);
    shown(++done);
  };
  for (size_t i = 0; i < show.plans.size(); ++i) {
    const bool last = i + 1 == show.plans.size();
    const int32_t alone = show.each - (i == 0 ? 0 : show.fade) - (last ? 0 : show.fade);
    for (int32_t frame = 0; frame < alone; ++frame) write(turns[i % 2]->Next());
    for (int32_t step = 0; !last && step < show.fade; ++step) {
      const FrameView from = turns[i % 2]->Next();
      write(fade.Blend(from, turns[(i + 1) % 2]->Next(), step, show.fade));
    }
  }
  film->Finish();
}

}  // namespace kelto::host
