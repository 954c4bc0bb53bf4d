#include "host/frames/backdrop.h"

#include <array>
#include <cstring>

namespace kelto::host {

Backdrop::Backdrop(const RenderPlan& plan, PixelLayout layout, const BlurredPhoto* blurred)
    : blackRow_(static_cast<size_t>(plan.format.size.width) * BytesPerPixel(layout)) {
  constexpr std::array<uint8_t, 4> kStudioBlack{16, 128, 16, 128}, kOpaqueBlack{0, 0, 0, 255};
  const auto& black = layout == PixelLayout::kYCbYCr ? kStudioBlack : kOpaqueBlack;
  for (size_t i = 0; i < blackRow_.size(); ++i) blackRow_[i] = black[i % black.size()];
  if (blurred != nullptr) still_ = blurred->Frame(plan.format, layout);
  if (!plan.over.empty()) video_ = OpenBackdropVideo(plan, layout);
}

void Backdrop::Fill(int32_t number, hfxImage& image) {
  if (video_) {
    const FrameView frame = video_->Frame(number);
    for (int32_t row = 0; row < image.GetHeight(); ++row) {
      std::memcpy(image.GetRowPtr(row), frame.Row(row), blackRow_.size());
    }
    return;
  }
  for (int32_t row = 0; row < image.GetHeight(); ++row) {
    const uint8_t* from = still_.empty() ? blackRow_.data() : &still_[row * blackRow_.size()];
    std::memcpy(image.GetRowPtr(row), from, blackRow_.size());
  }
}

}  // namespace kelto::host
