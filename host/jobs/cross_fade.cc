#include "host/jobs/cross_fade.h"

#include <algorithm>

namespace kelto::host {
namespace {

/// The weight of the new picture: 2^kWeightBits is all of it. Its sum with a sample's bits fills 32
/// at the most, and fades of 16 bits are as fine in time as in level.
template <typename Sample>
constexpr uint32_t kWeightBits = 8 * sizeof(Sample);

/// `part` of `whole` as a weight of so many bits.
uint32_t WeightOf(int64_t part, int64_t whole, uint32_t bits) {
  const int64_t all = int64_t{1} << bits;
  return static_cast<uint32_t>(std::min(all, (all * part + whole / 2) / whole));
}

template <typename Sample>
void BlendSamples(const void* from, const void* to, uint32_t weight, size_t bytes, void* out) {
  const Sample *before = static_cast<const Sample*>(from), *after = static_cast<const Sample*>(to);
  Sample* mixed = static_cast<Sample*>(out);
  constexpr uint32_t kBits = kWeightBits<Sample>, kAll = 1U << kBits;
  for (size_t i = 0; i < bytes / sizeof(Sample); ++i) {
    const uint32_t sum = before[i] * (kAll - weight) + after[i] * weight;
    mixed[i] = static_cast<Sample>((sum + kAll / 2) >> kBits);
  }
}

void BlendRow(PixelLayout layout, const uint8_t* from, const uint8_t* to, uint32_t weight,
              size_t bytes, uint8_t* out) {
  if (layout == PixelLayout::kRgba16) {
    BlendSamples<uint16_t>(from, to, weight, bytes, out);
  } else {
    BlendSamples<uint8_t>(from, to, weight, bytes, out);
  }
}

}  // namespace

CrossFade::CrossFade(const FilmFormat& format, PixelLayout layout, FadeKind kind, Colour colour)
    : format_(format),
      layout_(layout),
      kind_(kind),
      colour_(colour, format.size, layout),
      rowBytes_(static_cast<size_t>(format.size.width) * BytesPerPixel(layout)),
      bytes_(rowBytes_ * format.size.height) {}

FrameView CrossFade::Blend(const FrameView& from, const FrameView& to, int32_t step,
                           int32_t steps) {
  const FrameView colour = colour_.View();
  const bool deep = layout_ == PixelLayout::kRgba16;
  const uint32_t bits = deep ? kWeightBits<uint16_t> : kWeightBits<uint8_t>;
  for (int32_t row = 0; row < format_.size.height; ++row) {
    const int32_t halves = 2 * step + (IsLaterField(row) ? 1 : 0);
    const uint8_t *before = from.Row(row), *after = to.Row(row);
    uint32_t weight = WeightOf(int64_t{halves} + 2, 2 * (int64_t{steps} + 1), bits);
    if (kind_ == FadeKind::kDip) {
      // At twice the rate: the first half goes to the colour, the second one from it.
      const int64_t done = 2 * (int64_t{halves} + 2), middle = 2 * (int64_t{steps} + 1);
      const bool goes = done <= middle;
      (goes ? after : before) = colour.Row(row);
      weight = WeightOf(goes ? done : done - middle, middle, bits);
    }
    BlendRow(layout_, before, after, weight, rowBytes_, &bytes_[row * rowBytes_]);
  }
  return {bytes_.data(), static_cast<ptrdiff_t>(rowBytes_), format_.size};
}

bool CrossFade::IsLaterField(int32_t row) const {
  const bool top = row % 2 == 0;
  return format_.Interlaced() && top != (format_.fields == FieldOrder::kTopFirst);
}

}  // namespace kelto::host
