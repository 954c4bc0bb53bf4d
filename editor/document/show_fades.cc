#include "editor/document/show_fades.h"

#include <algorithm>

#include "editor/document/show_changes.h"
#include "host/options/rate.h"
#include "host/options/usual_times.h"

namespace kelto::editor {
namespace {

/// Frames of the fade behind `picture` where it and what is beside it are seen for so many. As the
/// command has it: no fade takes more than half of what is on either side.
int32_t FadeFrames(const host::ShowPicture& picture, int32_t here, int32_t there) {
  const double seconds = picture.fade.value_or(host::kUsualFadeSeconds);
  const int32_t fade = seconds > 0.0 ? host::FramesOf(seconds, picture.plan.format.rate) : 0;
  return std::min(fade, std::min(here, there) / 2);
}

}  // namespace

FadesAround FadesOf(const Document& document) {
  FadesAround fades;
  const auto read = ShowOf(document);
  if (read == nullptr) return fades;
  const host::ShowProject& show = *read;
  const size_t at = std::min(document.picture, show.pictures.size() - 1);
  const host::ShowPicture& picture = show.pictures[at];
  const int32_t frames = picture.plan.frames;
  fades.dip = show.fadeKind == "dip";
  if (at > 0) {
    const host::ShowPicture& before = show.pictures[at - 1];
    fades.before = before.plan;
    fades.in = FadeFrames(before, before.plan.frames, frames);
  } else if (!show.title.empty()) {
    fades.title = show.title;
    fades.titleFrames = host::FramesOf(host::kTitleSeconds, picture.plan.format.rate);
    // The card's is the first picture's own.
    fades.in = FadeFrames(picture, fades.titleFrames, frames);
  }
  if (at + 1 < show.pictures.size()) {
    fades.after = show.pictures[at + 1].plan;
    fades.out = FadeFrames(picture, frames, fades.after->frames);
  }
  return fades;
}

}  // namespace kelto::editor
