#include "runtime/stills/row_writer.h"

#include <algorithm>
#include <cstring>

namespace kelto::stills {
namespace {

/// Full scale of a sample type is its largest value.
template <typename T>
void Unpremultiply(T* pixel, uint32_t pixels) {
  constexpr uint32_t kFull = static_cast<T>(~T{0});
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    const uint32_t a = pixel[3];
    if (a == 0 || a == kFull) continue;
    for (int c = 0; c < 3; ++c) {
      pixel[c] = static_cast<T>(std::min(kFull, (pixel[c] * kFull + a / 2) / a));
    }
  }
}

void MultiplyByAlpha(uint8_t* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    const unsigned a = pixel[3];
    if (a == 255) continue;
    for (int c = 0; c < 3; ++c) pixel[c] = MultiplyBytes(pixel[c], a);
    pixel[3] = 255;
  }
}

void MakeOpaque(uint8_t* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i) pixel[i * size_t{4} + 3] = 255;
}

void Mirror(uint8_t* row, uint32_t pixels) {
  uint8_t* left = row;
  uint8_t* right = row + (pixels - size_t{1}) * 4;
  for (; left < right; left += 4, right -= 4) std::swap_ranges(left, left + 4, right);
}

}  // namespace

RowWriter::RowWriter(const StillInfo& info, ColorModel model, PixelFormat format, Alpha alpha,
                     const PixelBuffer& target)
    : width_(info.width),
      height_(info.height),
      orientation_(info.orientation),
      upside_down_(orientation_ == 3 || orientation_ == 4),
      format_(format),
      alpha_(alpha),
      target_(target),
      converter_(info.icc, model, format) {
  if (format != PixelFormat::kBgra8) {
    source_row_ = std::make_unique<uint8_t[]>(width_ * BytesPerPixel(format));
  }
  if (info.turned()) strip_ = std::make_unique<uint8_t[]>(width_ * size_t{4} * kStripRows);
}

uint8_t* RowWriter::Place(uint32_t y) {
  if (strip_) return &strip_[(y % kStripRows) * size_t{4} * width_];
  const uint32_t row = upside_down_ ? height_ - 1 - y : y;
  return target_.pixels + static_cast<ptrdiff_t>(row) * target_.row_bytes;
}

uint8_t* RowWriter::Row(uint32_t y) { return source_row_ ? source_row_.get() : Place(y); }

uint32_t RowWriter::RowsAhead(uint32_t y) const {
  if (source_row_) return 1;
  return std::min(height_ - y, kStripRows - y % kStripRows);
}

void RowWriter::Commit(uint32_t y) {
  uint8_t* from = Row(y);
  uint8_t* to = Place(y);
  // Profiles speak of whole colours.
  const bool whole = alpha_ == Alpha::kPremultiplied && converter_.has_profile();
  if (whole && format_ == PixelFormat::kBgra8) Unpremultiply(from, width_);
  if (whole && format_ == PixelFormat::kRgba16) {
    Unpremultiply(static_cast<uint16_t*>(static_cast<void*>(from)), width_);
  }
  converter_.Convert(from, to, width_);
  if (alpha_ == Alpha::kStraight || whole) {
    MultiplyByAlpha(to, width_);
  } else if (alpha_ == Alpha::kPremultiplied || alpha_ == Alpha::kIgnored) {
    MakeOpaque(to, width_);
  }

  if (orientation_ == 2 || orientation_ == 3) Mirror(to, width_);
  if (strip_ && (y % kStripRows == kStripRows - 1 || y == height_ - 1)) {
    FlushStrip(y - y % kStripRows, y % kStripRows + 1);
  }
}

void RowWriter::FlushStrip(uint32_t first, uint32_t rows) {
  // Stored (x, y) goes to column y, or its mirror image, of row x, or its mirror image.
  const bool columns_reversed = orientation_ == 6 || orientation_ == 7;
  const bool rows_reversed = orientation_ == 7 || orientation_ == 8;
  const uint32_t left = columns_reversed ? height_ - first - rows : first;
  for (uint32_t x = 0; x < width_; ++x) {
    const uint32_t row = rows_reversed ? width_ - 1 - x : x;
    uint8_t* to =
        target_.pixels + static_cast<ptrdiff_t>(row) * target_.row_bytes + left * size_t{4};
    for (uint32_t i = 0; i < rows; ++i, to += 4) {
      const uint32_t y = columns_reversed ? rows - 1 - i : i;
      std::memcpy(to, &strip_[(y * size_t{width_} + x) * 4], 4);
    }
  }
}

}  // namespace kelto::stills
