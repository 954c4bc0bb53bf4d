#include "runtime/stills/row_writer.h"

#include <algorithm>
#include <cstring>

namespace kelto::stills {
namespace {

void Mirror(uint8_t* row, uint32_t pixels, size_t pixel_bytes) {
  uint8_t* left = row;
  uint8_t* right = row + (pixels - size_t{1}) * pixel_bytes;
  for (; left < right; left += pixel_bytes, right -= pixel_bytes) {
    std::swap_ranges(left, left + pixel_bytes, right);
  }
}

std::unique_ptr<RowFinisher> MakeFinisher(const StillInfo& info, ColorModel model,
                                          PixelFormat format, Alpha alpha,
                                          const PixelBuffer& target) {
  if (target.deep()) return MakeDeepFinisher(info, model, format, alpha, target.transparent);
  return MakeByteFinisher(info, model, format, alpha);
}

}  // namespace

RowWriter::RowWriter(const StillInfo& info, ColorModel model, PixelFormat format, Alpha alpha,
                     const PixelBuffer& target)
    : width_(info.width),
      height_(info.height),
      orientation_(info.orientation),
      upside_down_(orientation_ == 3 || orientation_ == 4),
      pixel_bytes_(BytesPerPixel(target.format)),
      target_(target),
      finisher_(MakeFinisher(info, model, format, alpha, target)) {
  if (format != target.format) {
    source_row_ = std::make_unique<uint8_t[]>(width_ * BytesPerPixel(format));
  }
  if (info.turned()) strip_ = std::make_unique<uint8_t[]>(width_ * pixel_bytes_ * kStripRows);
}

uint8_t* RowWriter::Place(uint32_t y) {
  if (strip_) return &strip_[(y % kStripRows) * pixel_bytes_ * width_];
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
  finisher_->Finish(from, to, width_);
  if (orientation_ == 2 || orientation_ == 3) Mirror(to, width_, pixel_bytes_);
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
        target_.pixels + static_cast<ptrdiff_t>(row) * target_.row_bytes + left * pixel_bytes_;
    for (uint32_t i = 0; i < rows; ++i, to += pixel_bytes_) {
      const uint32_t y = columns_reversed ? rows - 1 - i : i;
      std::memcpy(to, &strip_[(y * size_t{width_} + x) * pixel_bytes_], pixel_bytes_);
    }
  }
}

}  // namespace kelto::stills
