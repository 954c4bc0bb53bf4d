#include "editor/document/show_fades.h"

#include <algorithm>

#include "editor/document/show_changes.h"
#include "host/options/fades.h"
#include "host/options/rate.h"
#include "host/options/usual_times.h"
#include "host/plan/deep_plan.h"

namespace kelto::editor {

int32_t FadeOf(const host::ShowPicture& picture, int32_t here, int32_t there) {
  const double seconds = picture.fade.value_or(host::kUsualFadeSeconds);
  return std::min(host::FadeFrames(seconds, picture.plan.format.rate),
                  host::LongestFade(here, there));
}

namespace {

ShowDepths DepthsOf(const host::ShowProject& show) {
  ShowDepths depths;
  for (const host::ShowPicture& picture : show.pictures) {
    depths.possible = depths.possible && host::WhyNotDeep(picture.plan).empty();
    depths.needed = depths.needed || host::NeedsDeep(picture.plan);
    depths.photos.push_back(picture.plan.photo);
  }
  return depths;
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
  fades.depths = DepthsOf(show);
  fades.dip = show.fadeKind == "dip";
  if (at > 0) {
    const host::ShowPicture& before = show.pictures[at - 1];
    fades.before = before.plan;
    fades.in = FadeOf(before, before.plan.frames, frames);
  } else if (!show.title.empty()) {
    fades.title = show.title;
    fades.titleFrames = host::FramesOf(host::kTitleSeconds, picture.plan.format.rate);
    // The card's is the first picture's own.
    fades.in = FadeOf(picture, fades.titleFrames, frames);
  }
  if (at + 1 < show.pictures.size()) {
    fades.after = show.pictures[at + 1].plan;
    fades.out = FadeOf(picture, frames, fades.after->frames);
  }
  return fades;
}

}  // namespace kelto::editor
