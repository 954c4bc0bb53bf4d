#include "host/frames/effect_session.h"

#include <utility>
#include <vector>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/effect/effect_settings.h"
#include "host/effect/render_state.h"
#include "host/files/path_text.h"
#include "host/track/keyed_plan.h"

namespace kelto::host {
namespace {

constexpr uint16_t kFirstModel = 1;

int32_t ColorspaceOf(PixelLayout layout) {
  return layout == PixelLayout::kBGRA ? hfxColorspaceRGB : hfxColorspaceYCbCr;
}

/// Whether `later` takes over all that an effect holds from `earlier`, which it keeps until it gets
/// something else.
bool Replaces(const Setting& later, const Setting& earlier) {
  return later == earlier || later.value || later.keys.size() > 1;
}

bool SameLoading(const RenderPlan& a, const RenderPlan& b) {
  const Setting *levels = a.FindSetting(key::kLevels), *others = b.FindSetting(key::kLevels);
  const bool same = levels == nullptr || others == nullptr ? levels == others : *levels == *others;
  return same && a.photo == b.photo && a.over == b.over && a.beside == b.beside &&
         a.playMode == b.playMode && a.format.fields == b.format.fields;
}

/// The plan as the effect gets it: with keys, and drawn over its input where something is there.
RenderPlan PreparedPlan(const RenderPlan& given, PixelSize photo) {
  RenderPlan plan = KeyedPlan(given, photo);
  if (plan.beside == Beside::kBlur) plan.Set(key::kCompositeOver, std::string(entry::kOverVideo));
  return plan;
}

}  // namespace

EffectSession::EffectSession(const std::string& modulePath, const RenderPlan& plan,
                             const Photo& photo, PixelLayout layout)
    : plan_(PreparedPlan(plan, {photo.width, photo.height})),
      layout_(layout),
      photo_(photo),
      track_(ViewTrack::For(plan_, {photo.width, photo.height})) {
  // Before the effect loads the photo, so that the two do not add up in memory.
  if (plan_.beside == Beside::kBlur) {
    beside_.emplace(DecodePhoto(photo_), photo_.width, photo_.height);
  }
  MakeImages();
  MakeCaption();
  std::string error;
  module_ = hfx::Module::Load(ForCalls(PathOf(modulePath)), &error);
  if (!module_) throw Error(error);
  effect_ = hfx::Effect::Create(*module_, kFirstModel, &error);
  if (!effect_) throw Error(modulePath + ": " + error);
  SetPhoto(*effect_, photo);
  // They settle how the photo is loaded.
  if (const Setting* levels = plan_.FindSetting(key::kLevels)) Apply(*effect_, *levels);
  if (!HasPicture(*effect_, photo, FrameState(plan_, 0), plan_.playMode, *input_->image(),
                  *output_)) {
    const std::string reason = WhyNoPicture(photo);
    if (!reason.empty()) throw Error(reason);
  }
  if (track_) {
    ApplyWithoutMove(*effect_, plan_.settings);
  } else {
    for (const Setting& setting : plan_.settings) Apply(*effect_, setting);
  }
  effect_->ParametersChanged();
  if (!effect_->BeginRender(plan_.playMode, &error)) throw Error("the effect: " + error);
}

void EffectSession::MakeImages() {
  const FrameSize size = plan_.format.size;
  input_.emplace(size.width, size.height, ColorspaceOf(layout_));
  output_.emplace(size.width, size.height, ColorspaceOf(layout_));
  backdrop_.emplace(plan_, layout_, beside_ ? &*beside_ : nullptr);
}

void EffectSession::MakeCaption() {
  caption_.reset();
  if (!plan_.caption.text.empty()) caption_.emplace(plan_, photo_.given, layout_);
}

EffectSession::~EffectSession() { effect_->EndRender(nullptr); }

void EffectSession::SetAbortQuery(std::function<bool()> query) {
  hfx::SetAbortQuery(effect_->instance(), std::move(query));
}

FrameView EffectSession::Render(int32_t number, double quality) {
  hfxImage& whole = *output_->image();
  RenderFrame(whole, number, quality);
  return {whole.GetRowPtr(0), whole.GetRowDelta(), plan_.format.size};
}

void EffectSession::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number,
                               double quality) {
  const hfxImage& own = *output_->image();
  hfxImage whole(own.GetWidth(), own.GetHeight(), pixels, rowBytes, own.GetColorspace(),
                 own.GetImgFormat());
  RenderFrame(whole, number, quality);
}

void EffectSession::RenderFrame(hfxImage& whole, int32_t number, double quality) {
  // Anew for every frame: the effect writes into its input.
  backdrop_->Fill(number, *input_->image());
  for (int32_t field = 0; field < FieldsOf(plan_); ++field) {
    const hfx::RenderState state = FieldState(plan_, number, field, quality);
    if (plan_.format.Interlaced()) {
      hfxImage input = hfx::FieldView(*input_->image(), state.topField);
      hfxImage output = hfx::FieldView(whole, state.topField);
      RenderField(state, input, output);
    } else {
      RenderField(state, *input_->image(), whole);
    }
  }
  if (caption_) caption_->Over(whole.GetRowPtr(0), whole.GetRowDelta(), number);
}

void EffectSession::Change(const Setting& setting) {
  Apply(*effect_, setting);
  plan_.SettingOf(setting.parameter) = setting;
  effect_->ParametersChanged();
}

bool EffectSession::Adopt(const RenderPlan& given) {
  const RenderPlan plan = PreparedPlan(given, {photo_.width, photo_.height});
  if (!SameLoading(plan_, plan)) return false;
  auto track = ViewTrack::For(plan, {photo_.width, photo_.height});
  if ((track == nullptr) != (track_ == nullptr)) return false;
  for (const Setting& earlier : plan_.settings) {
    const Setting* later = plan.FindSetting(earlier.parameter);
    if (later == nullptr || !Replaces(*later, earlier)) return false;
  }
  const RenderPlan before = std::exchange(plan_, plan);
  track_ = std::move(track);
  const bool sameVideo = plan.over.empty() || (plan.frames == before.frames);
  if (plan.format != before.format || !sameVideo) MakeImages();
  if (plan.format != before.format || plan.caption.text != before.caption.text) {
    MakeCaption();
  } else if (caption_) {
    caption_->SetTimes(plan_);
  }
  std::vector<Setting> changed;
  for (const Setting& setting : plan.settings) {
    const Setting* earlier = before.FindSetting(setting.parameter);
    if (earlier == nullptr || setting != *earlier) changed.push_back(setting);
  }
  if (track_) {
    ApplyWithoutMove(*effect_, changed);
  } else {
    for (const Setting& setting : changed) Apply(*effect_, setting);
  }
  effect_->ParametersChanged();
  return true;
}

void EffectSession::RenderField(const hfx::RenderState& state, hfxImage& input, hfxImage& output) {
  if (track_) ShowView(*effect_, track_->At(state));
  std::string error;
  if (!effect_->Render(state, &input, &output, &error)) throw Error("the effect: " + error);
}

}  // namespace kelto::host
