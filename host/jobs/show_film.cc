#include "host/jobs/show_film.h"

#include <algorithm>
#include <utility>

#include "host/deep/shown_film.h"

namespace kelto::host {

std::vector<int32_t> BeginningsOf(const std::vector<RenderPlan>& plans,
                                  const std::vector<int32_t>& fades) {
  std::vector<int32_t> beginnings;
  beginnings.reserve(plans.size() + 1);
  int32_t begin = 0;
  for (size_t i = 0; i < plans.size(); ++i) {
    beginnings.push_back(begin);
    begin += plans[i].frames - (i < fades.size() ? fades[i] : 0);
  }
  beginnings.push_back(begin);
  return beginnings;
}

ShowFilm::ShowFilm(std::string module, ShowScenes scenes)
    : module_(std::move(module)),
      scenes_(std::move(scenes)),
      beginnings_(BeginningsOf(scenes_.plans, scenes_.fades)) {
  Prepare();
}

void ShowFilm::Prepare() {
  const FilmFormat& format = scenes_.plans.front().format;
  for (Turn& turn : turns_) turn.session.reset();
  layout_ = PixelLayout::kBGRA;
  dithered_.reset();
  if (AreDrawnDeep(scenes_.plans, scenes_.photos)) {
    layout_ = PixelLayout::kRgba16;
    dithered_.emplace(format.size, PixelLayout::kBGRA);
  }
  fade_.emplace(format, layout_, scenes_.fadeKind);
  if (scenes_.title.frames == 0) return;
  title_ = std::make_unique<TitleFrames>(scenes_.title.text, scenes_.title.frames, Colour{}, format,
                                         layout_);
}

PlanSession& ShowFilm::SessionOf(size_t picture) {
  Turn& turn = turns_[picture % turns_.size()];
  if (turn.session == nullptr || turn.picture != picture) {
    turn.session.reset();  // first: two would hold two photos
    turn.session = OpenSession(module_, scenes_.plans[picture], scenes_.photos[picture], layout_);
    turn.picture = picture;
    if (query_) turn.session->SetAbortQuery(query_);
  }
  return *turn.session;
}

FrameView ShowFilm::Render(int32_t number, double quality) {
  const FrameView frame = Blended(number, quality);
  return dithered_ ? dithered_->Of(frame) : frame;
}

FrameView ShowFilm::Blended(int32_t number, double quality) {
  const int32_t lead = scenes_.title.Lead();
  if (number < lead) return title_->At(number);
  const int32_t card = number;  // as the card counts
  number -= lead;
  // The last picture that has begun. The film's length is no picture's beginning.
  const auto after = std::upper_bound(beginnings_.begin(), beginnings_.end() - 1, number);
  const auto picture = static_cast<size_t>(after - beginnings_.begin()) - 1;
  const int32_t step = number - beginnings_[picture];
  PlanSession& shown = SessionOf(picture);
  const int32_t fade = picture > 0 ? scenes_.fades[picture - 1] : scenes_.title.fade;
  if (step >= fade) return shown.Render(step, quality);
  if (picture == 0) {
    return fade_->Blend(title_->At(card), shown.Render(step, quality), step, fade);
  }
  PlanSession& before = SessionOf(picture - 1);
  const FrameView from = before.Render(number - beginnings_[picture - 1], quality);
  return fade_->Blend(from, shown.Render(step, quality), step, fade);
}

void ShowFilm::Change(const Setting& setting) {
  for (RenderPlan& plan : scenes_.plans) plan.SettingOf(setting.parameter) = setting;
  if (AreDrawnDeep(scenes_.plans, scenes_.photos) != dithered_.has_value()) return Prepare();
  for (Turn& turn : turns_) {
    if (turn.session != nullptr) turn.session->Change(setting);
  }
}

}  // namespace kelto::host
