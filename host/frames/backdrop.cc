#include "host/frames/backdrop.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "host/base/error.h"
#if defined(KELTO_FFMPEG)
#include "host/terminal/terminal.h"
#include "host/video/video_reader.h"
#else
namespace kelto::host {
class VideoReader {};
}  // namespace kelto::host
#endif

namespace kelto::host {

#if defined(KELTO_FFMPEG)
namespace {

void WarnOfEarlyEnd(const RenderPlan& plan, double seconds) {
  const double film = plan.frames / plan.format.rate.PerSecond();
  // Lengths are rounded, to frames and by containers.
  if (seconds + 1.0 / plan.format.rate.PerSecond() + 0.1 >= film) return;
  char text[80];
  std::snprintf(text, sizeof text, ": ends after %.2f of the film's %.2f seconds; ", seconds, film);
  Warn(plan.over + text + "its last picture is shown from there on");
}

}  // namespace
#endif

Backdrop::Backdrop(const RenderPlan& plan, PixelLayout layout)
    : blackRow_(static_cast<size_t>(plan.format.size.width) * BytesPerPixel(layout)) {
  constexpr std::array<uint8_t, 4> kStudioBlack{16, 128, 16, 128}, kOpaqueBlack{0, 0, 0, 255};
  const auto& black = layout == PixelLayout::kYCbYCr ? kStudioBlack : kOpaqueBlack;
  for (size_t i = 0; i < blackRow_.size(); ++i) blackRow_[i] = black[i % black.size()];
  if (plan.over.empty()) return;
#if defined(KELTO_FFMPEG)
  video_ = std::make_unique<VideoReader>(plan.over, plan.format, layout);
  WarnOfEarlyEnd(plan, video_->Info().seconds);
#else
  throw Error(plan.over + ": this command reads no videos");
#endif
}

Backdrop::~Backdrop() = default;

void Backdrop::Fill([[maybe_unused]] int32_t number, hfxImage& image) {
#if defined(KELTO_FFMPEG)
  if (video_) {
    const FrameView frame = video_->Frame(number);
    for (int32_t row = 0; row < image.GetHeight(); ++row) {
      std::memcpy(image.GetRowPtr(row), frame.Row(row), blackRow_.size());
    }
    return;
  }
#endif
  for (int32_t row = 0; row < image.GetHeight(); ++row) {
    std::memcpy(image.GetRowPtr(row), blackRow_.data(), blackRow_.size());
  }
}

}  // namespace kelto::host
