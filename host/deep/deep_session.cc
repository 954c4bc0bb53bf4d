#include "host/deep/deep_session.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "catalogue/parameters.h"
#include "deep/engine.h"
#include "framing/frame_rects.h"
#include "host/base/error.h"
#include "host/effect/deep_photo.h"
#include "host/effect/render_state.h"
#include "host/plan/deep_plan.h"
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

}  // namespace

DeepSession::DeepSession(std::string modulePath, const RenderPlan& plan, const Photo& photo)
    : module_(std::move(modulePath)), photo_(photo), picture_(ReadDeepPhoto(photo)) {
  SetPlan(plan);
}

void DeepSession::SetPlan(const RenderPlan& plan) {
  const RenderPlan before = std::exchange(plan_, plan);
  const FrameSize size = plan.format.size;
  if (!(before.format == plan.format) || frame_.width() == 0) {
    frame_ = {};
    blurred_ = {};
    video_.reset();
    caption_.reset();
  }
  motion_.emplace(module_, plan, PixelSize{photo_.width, photo_.height});
  if (plan.caption.text != before.caption.text) caption_.reset();
  if (!plan.caption.text.empty()) {
    if (caption_) {
      caption_->SetTimes(plan);
    } else {
      caption_.emplace(plan, photo_.given, PixelLayout::kRgba16);
    }
  }
  SetBehind(before);
  if (frame_.width() == 0) {
    frame_ = DeepPicture(size.width, size.height, DeepSample::kUnsigned16, true);
  }
}

void DeepSession::SetBehind(const RenderPlan& before) {
  const FrameSize size = plan_.format.size;
  if (!plan_.over.empty()) {
    // Where the video ends depends on the film's length.
    if (video_ && before.frames == plan_.frames) return;
    video_.reset();  // first: two would hold two decoders
    video_ = OpenBackdropVideo(plan_, PixelLayout::kRgba16);
    return;
  }
  if (plan_.beside != Beside::kBlur) {
    blurred_ = {};
    return;
  }
  if (blurred_.width() > 0) return;
  if (!beside_) beside_.emplace(std::as_const(picture_).view());
  const std::vector<uint8_t> blurred = beside_->Frame(plan_.format, PixelLayout::kRgba16);
  blurred_ = DeepPicture(size.width, size.height, DeepSample::kUnsigned16, false);
  const DeepTarget rows = blurred_.view();
  const size_t rowBytes = static_cast<size_t>(size.width) * BytesPerPixel(PixelLayout::kRgba16);
  for (int32_t y = 0; y < rows.height; ++y) {
    std::memcpy(rows.Row<uint8_t>(y), &blurred[rowBytes * static_cast<size_t>(y)], rowBytes);
  }
}

void DeepSession::Change(const Setting& setting) {
  RenderPlan changed = plan_;
  changed.SettingOf(setting.parameter) = setting;
  SetPlan(changed);
}

bool DeepSession::Adopt(const RenderPlan& plan) {
  if (!WhyNotDeep(plan).empty() || PhotoName(plan) != PhotoName(plan_) || plan.over != plan_.over) {
    return false;
  }
  SetPlan(plan);
  return true;
}

FrameView DeepSession::Render(int32_t number, double quality) {
  const DeepTarget rows = frame_.view();
  RenderInto(rows.Row<uint8_t>(0), rows.rowBytes, number, quality);
  return {rows.Row<uint8_t>(0), rows.rowBytes, plan_.format.size};
}

void DeepSession::RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number, double quality) {
  const FrameSize size = plan_.format.size;
  const DeepSource behind = BehindFrame(number);
  DeepTarget whole;
  whole.pixels = pixels;
  whole.width = size.width;
  whole.height = size.height;
  whole.rowBytes = rowBytes;
  whole.hasAlpha = plan_.transparent;
  for (int32_t field = 0; field < FieldsOf(plan_); ++field) {
    RenderField(whole, behind, number, field, quality);
  }
  if (caption_) caption_->Over(pixels, rowBytes, number);
}

DeepSource DeepSession::BehindFrame(int32_t number) {
  if (!video_) return std::as_const(blurred_).view();
  const FrameView frame = video_->Frame(number);
  return {frame.pixels,   frame.size.width,        frame.size.height,
          frame.rowBytes, DeepSample::kUnsigned16, false};
}

void DeepSession::RenderField(const DeepTarget& whole, const DeepSource& behindWhole,
                              int32_t number, int32_t field, double quality) {
  if (aborted_ && aborted_()) throw Error("interrupted");
  const hfx::RenderState state = FieldState(plan_, number, field);
  const FrameMotion motion = motion_->At(number, field);
  const PixelSize size{photo_.width, photo_.height};
  const FrameRects rects = ComputeFrameRects(
      FrameToDraw(plan_, size, state, motion.squarePixels).geometry, size, motion.view);
  DeepJob job;
  job.sourceRect = rects.source;
  job.targetRect = rects.target;
  job.frame = {whole.width, whole.height};
  job.filterMode = FilterOf(motion.filter);
  if (quality < 1.0) job.filterMode = std::min<int32_t>(job.filterMode, kFilterTriangle);
  job.linearLight = plan_.linearLight;
  job.background = plan_.transparent ? std::array<float, 4>{} : SeenColour(motion.background);
  DeepTarget target = whole;
  DeepSource behind = behindWhole;
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
  const bool shows = video_ ? motion.overVideo : behind.width > 0;
  if (shows) job.backdrop = behind;
  RenderDeep(job, std::as_const(picture_).view(), target);
}

}  // namespace kelto::host
