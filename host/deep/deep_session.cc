#include "host/deep/deep_session.h"

#include <algorithm>
#include <utility>

#include "catalogue/parameters.h"
#include "deep/engine.h"
#include "framing/frame_rects.h"
#include "host/effect/deep_photo.h"
#include "host/effect/render_state.h"
#include "host/track/drawn_frame.h"

namespace kelto::host {
namespace {

int32_t FilterOf(const std::string& entry) {
  const auto found = std::find_if(std::begin(catalogue::kFilter), std::end(catalogue::kFilter),
                                  [&](const catalogue::Entry& each) { return entry == each.text; });
  return static_cast<int32_t>(found - std::begin(catalogue::kFilter));
}

/// The colour that is seen of the parameter's value.
std::array<float, 4> SeenColour(const std::array<double, 3>& value) {
  const Colour seen = ColourOf(value);
  return {static_cast<float>(seen.red) / 255.0f, static_cast<float>(seen.green) / 255.0f,
          static_cast<float>(seen.blue) / 255.0f, 1.0f};
}

bool IsOther(const RenderPlan& plan, const char* parameter, const SettingValue& value) {
  const Setting* setting = plan.FindSetting(parameter);
  if (setting == nullptr) return false;
  const SettingValue* held = HeldValue(setting);
  return held == nullptr || *held != value;
}

}  // namespace

std::string WhyNotDeep(const RenderPlan& plan) {
  if (IsOther(plan, key::kDisplay, std::string(entry::kDisplayTarget))) {
    return "the source display";
  }
  if (IsOther(plan, key::kLevels, std::string(entry::kLevelsRGB))) return "601 levels";
  if (plan.beside == Beside::kBlur) return "--beside blur";
  if (!plan.caption.text.empty()) return "a caption";
  return "";
}

DeepSession::DeepSession(const std::string& modulePath, const RenderPlan& plan, const Photo& photo)
    : plan_(plan),
      size_{photo.width, photo.height},
      motion_(modulePath, plan, size_),
      picture_(ReadDeepPhoto(photo)) {
  if (plan.over.empty()) return;
  const FrameSize size = plan.format.size;
  backdrop_.emplace(plan, PixelLayout::kBGRA);
  video_.emplace(size.width, size.height, hfxColorspaceRGB);
  backdropRows_ = DeepPicture(size.width, size.height, DeepSample::kUnsigned16, false);
}

FrameView DeepSession::Render(int32_t number) {
  const FrameSize size = plan_.format.size;
  if (frame_.width() == 0) {
    frame_ = DeepPicture(size.width, size.height, DeepSample::kUnsigned16, true);
  }
  const DeepTarget rows = frame_.view();
  RenderInto(static_cast<uint8_t*>(rows.pixels), rows.rowBytes, number);
  return {static_cast<const uint8_t*>(rows.pixels), rows.rowBytes, size};
}

void DeepSession::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number) {
  const FrameSize size = plan_.format.size;
  if (backdrop_) FillBackdrop(number);
  DeepTarget whole;
  whole.pixels = pixels;
  whole.width = size.width;
  whole.height = size.height;
  whole.rowBytes = rowBytes;
  whole.hasAlpha = plan_.transparent;
  for (int32_t field = 0; field < FieldsOf(plan_); ++field) RenderField(whole, number, field);
}

void DeepSession::FillBackdrop(int32_t number) {
  hfxImage& image = *video_->image();
  backdrop_->Fill(number, image);
  const DeepTarget rows = backdropRows_.view();
  for (int32_t y = 0; y < rows.height; ++y) {
    const auto* from = static_cast<const uint8_t*>(image.GetRowPtr(y));
    uint16_t* to = rows.Row<uint16_t>(y);
    for (int32_t x = 0; x < rows.width; ++x, from += 4, to += 4) {
      for (int c = 0; c < 3; ++c) to[c] = static_cast<uint16_t>(from[2 - c] * 257);
      to[3] = 65535;
    }
  }
}

void DeepSession::RenderField(const DeepTarget& whole, int32_t number, int32_t field) {
  const hfx::RenderState state = FieldState(plan_, number, field);
  const FrameMotion motion = motion_.At(number, field);
  const FrameRects rects = ComputeFrameRects(
      FrameToDraw(plan_, size_, state, motion.squarePixels).geometry, size_, motion.view);
  DeepJob job;
  job.sourceRect = rects.source;
  job.targetRect = rects.target;
  job.frame = {whole.width, whole.height};
  job.filterMode = FilterOf(motion.filter);
  job.linearLight = plan_.linearLight;
  job.background = plan_.transparent ? std::array<float, 4>{} : SeenColour(motion.background);
  DeepTarget target = whole;
  DeepSource behind = std::as_const(backdropRows_).view();
  if (plan_.format.Interlaced()) {
    job.fieldRows = state.topField ? kEvenRows : kOddRows;
    const int32_t first = state.topField ? 0 : 1;
    target.pixels = static_cast<uint8_t*>(target.pixels) + first * target.rowBytes;
    target.height = (target.height + 1 - first) / 2;
    target.rowBytes *= 2;
    behind.pixels = static_cast<const uint8_t*>(behind.pixels) + first * behind.rowBytes;
    behind.height = target.height;
    behind.rowBytes *= 2;
  }
  if (backdrop_ && motion.overVideo) job.backdrop = behind;
  RenderDeep(job, std::as_const(picture_).view(), target);
}

}  // namespace kelto::host
