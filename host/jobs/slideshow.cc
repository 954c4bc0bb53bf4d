#include "host/jobs/slideshow.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/film/depth.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/frame_source.h"
#include "host/jobs/title_frames.h"
#include "host/options/rate.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// The pictures take turns in two sources, so that each holds one at a time; while one source's
/// picture is shown, the other loads the next.
std::unique_ptr<FrameSource> OpenTurns(const Slideshow& show, size_t first) {
  SceneList list{show.module, FrameLayout(*show.kind, show.request), {}};
  for (size_t i = first; i < show.plans.size(); i += 2) {
    list.scenes.push_back({show.plans[i], {0, show.plans[i].frames}});
  }
  if (list.scenes.empty()) return nullptr;
  return RenderInWorkers(std::move(list), std::max(1, show.workers / 2));
}

/// The card at the beginning, with a message where letters are missing.
TitleFrames TitleOf(const Slideshow& show) {
  TitleFrames title(show.title.text, show.title.frames, show.ends.colour, show.request.format,
                    FrameLayout(*show.kind, show.request));
  if (title.MissingLetters() > 0) {
    PrintMessage("--title: no font on this machine has " + std::to_string(title.MissingLetters()) +
                 " of its letters; install one that has them, such as fonts-noto");
  }
  return title;
}

}  // namespace

int32_t SlideshowFrames(const Slideshow& show) {
  int64_t frames = int64_t{show.title.frames} - show.title.fade;
  for (const RenderPlan& plan : show.plans) frames += plan.frames;
  for (const int32_t fade : show.fades) frames -= fade;
  if (frames > kMaxFrames) {
    throw UsageError("a film of " + std::to_string(frames) + " frames is too long; " +
                     std::to_string(kMaxFrames) + " are the most");
  }
  return static_cast<int32_t>(frames);
}

void PlaceCaptions(std::vector<RenderPlan>& plans, const std::vector<int32_t>& fades,
                   int32_t titleFade) {
  for (size_t i = 0; i < plans.size(); ++i) {
    Caption& caption = plans[i].caption;
    caption.from = i > 0 ? fades[i - 1] : titleFade;
    caption.until = plans[i].frames - (i < fades.size() ? fades[i] : 0);
  }
}

void MakeSlideshow(const Slideshow& show, const FrameDone& shown) {
  const std::array turns = {OpenTurns(show, 0), OpenTurns(show, 1)};
  const std::unique_ptr<FrameSink> film = OpenFilm(*show.kind, show.request);
  const PixelLayout layout = FrameLayout(*show.kind, show.request);
  CrossFade fade(show.request.format, layout, show.fadeKind, show.ends.colour);
  EndFades ends(show.ends, show.request.format, layout, show.request.frames);
  int32_t done = 0;
  const auto write = [&](const FrameView& frame) {
    const FrameView ended = ends.Of(frame, done);
    film->Write(ended);
    shown(++done, ended);
  };
  const auto fadeInto = [&](const auto& next, FrameSource& to, int32_t steps) {
    for (int32_t step = 0; step < steps; ++step) {
      const FrameView from = next();
      write(fade.Blend(from, to.Next(), step, steps));
    }
  };
  if (show.title.frames > 0) {
    TitleFrames title = TitleOf(show);
    int32_t number = 0;
    const auto next = [&] { return title.At(number++); };
    for (int32_t i = show.title.fade; i < show.title.frames; ++i) write(next());
    fadeInto(next, *turns[0], show.title.fade);
  }
  for (size_t i = 0; i < show.plans.size(); ++i) {
    const int32_t before = i > 0 ? show.fades[i - 1] : show.title.fade;
    const int32_t after = i + 1 < show.plans.size() ? show.fades[i] : 0;
    const int32_t alone = show.plans[i].frames - before - after;
    FrameSource& picture = *turns[i % 2];
    for (int32_t frame = 0; frame < alone; ++frame) write(picture.Next());
    if (after > 0) fadeInto([&] { return picture.Next(); }, *turns[(i + 1) % 2], after);
  }
  film->Finish();
}

}  // namespace kelto::host
