#include "host/jobs/cross_fade.h"

#include <algorithm>

namespace kelto::host {
namespace {

/// The weight of the new picture in 256ths, 256 at most, `halves` half steps after the first frame.
uint32_t WeightAt(int32_t halves, int32_t steps) {
  const int64_t whole = 2 * (int64_t{steps} + 1);
  return static_cast<uint32_t>(
      std::min<int64_t>(256, (256 * (int64_t{halves} + 2) + whole / 2) / whole));
}

void BlendRow(const uint8_t* from, const uint8_t* to, uint32_t weight, size_t count, uint8_t* out) {
  for (size_t i = 0; i < count; ++i) {
    out[i] = static_cast<uint8_t>((from[i] * (256 - weight) + to[i] * weight + 128) >> 8);
  }
}

}  // namespace

CrossFade::CrossFade(const FilmFormat& format, PixelLayout layout)
    : format_(format),
      rowBytes_(static_cast<size_t>(format.size.width) * BytesPerPixel(layout)),
      bytes_(rowBytes_ * format.size.height) {}

FrameView CrossFade::Blend(const FrameView& from, const FrameView& to, int32_t step,
                           int32_t steps) {
  const uint32_t early = WeightAt(2 * step, steps), late = WeightAt(2 * step + 1, steps);
  for (int32_t row = 0; row < format_.size.height; ++row) {
    BlendRow(from.Row(row), to.Row(row), IsLaterField(row) ? late : early, rowBytes_,
             &bytes_[row * rowBytes_]);
  }
  return {bytes_.data(), static_cast<ptrdiff_t>(rowBytes_), format_.size};
}

bool CrossFade::IsLaterField(int32_t row) const {
  const bool top = row % 2 == 0;
  return format_.Interlaced() && top != (format_.fields == FieldOrder::kTopFirst);
}

}  // namespace kelto::host
