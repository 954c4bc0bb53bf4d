#include "host/deep/shown_film.h"

#include <utility>

#include "host/deep/deep_session.h"
#include "host/frames/effect_session.h"
#include "host/plan/deep_plan.h"

namespace kelto::host {

bool IsDrawnDeep(const RenderPlan& plan, const Photo& photo) {
  return AreDrawnDeep({&plan, 1}, {&photo, 1});
}

bool AreDrawnDeep(std::span<const RenderPlan> plans, std::span<const Photo> photos) {
  bool needed = false;
  for (size_t i = 0; i < plans.size(); ++i) {
    const RenderPlan& plan = plans[i];
    const Photo& photo = photos[i];
    if (photo.deepMemory == 0 || !WhyNotDeep(plan).empty()) return false;
    needed = needed || photo.bits > 8 || photo.transparent || NeedsDeep(plan);
  }
  return needed;
}

std::unique_ptr<PlanSession> OpenSession(const std::string& modulePath, const RenderPlan& plan,
                                         const Photo& photo, PixelLayout layout) {
  if (layout == PixelLayout::kRgba16) return std::make_unique<DeepSession>(modulePath, plan, photo);
  return std::make_unique<EffectSession>(modulePath, plan, photo, layout);
}

ShownFilm::ShownFilm(std::string modulePath, const RenderPlan& plan, const Photo& photo)
    : module_(std::move(modulePath)), plan_(plan), photo_(photo) {
  Open();
}

void ShownFilm::Open() {
  session_.reset();  // first: two would hold two photos
  dithered_.reset();
  const bool deep = IsDrawnDeep(plan_, photo_);
  session_ = OpenSession(module_, plan_, photo_, deep ? PixelLayout::kRgba16 : PixelLayout::kBGRA);
  if (deep) dithered_ = std::make_unique<DitheredFrame>(plan_.format.size, PixelLayout::kBGRA);
  if (query_) session_->SetAbortQuery(query_);
}

void ShownFilm::SetAbortQuery(std::function<bool()> query) {
  query_ = std::move(query);
  session_->SetAbortQuery(query_);
}

FrameView ShownFilm::Render(int32_t number, double quality) {
  const FrameView frame = session_->Render(number, quality);
  return dithered_ ? dithered_->Of(frame) : frame;
}

void ShownFilm::Change(const Setting& setting) {
  plan_.SettingOf(setting.parameter) = setting;
  if (IsDrawnDeep(plan_, photo_) == (dithered_ != nullptr)) {
    session_->Change(setting);
  } else {
    Open();
  }
}

bool ShownFilm::Adopt(const RenderPlan& plan) {
  if (IsDrawnDeep(plan, photo_) != (dithered_ != nullptr) || !session_->Adopt(plan)) return false;
  if (dithered_ && !(plan.format.size == plan_.format.size)) {
    dithered_ = std::make_unique<DitheredFrame>(plan.format.size, PixelLayout::kBGRA);
  }
  plan_ = plan;
  return true;
}

}  // namespace kelto::host
