// The last step that every picture shares: finished rows, turned upright, in the caller's buffer.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/stills/color.h"
#include "runtime/stills/decoder.h"
#include "runtime/stills/row_finisher.h"

namespace kelto::stills {

/// Takes stored rows and leaves finished ones in the caller's buffer. There is no second copy of
/// the picture: rows in the layout of the buffer are decoded where they belong, those of pictures
/// on their side (orientations 5 to 8) pass through a strip of a few rows.
class RowWriter {
 public:
  /// Rows of a strip: 16 pixels of four bytes fill a cache line of a turned row.
  static constexpr uint32_t kStripRows = 16;

  RowWriter(const StillInfo& info, ColorModel model, PixelFormat format, Alpha alpha,
            const PixelBuffer& target);

  /// Where stored row `y` is to be decoded.
  uint8_t* Row(uint32_t y);
  /// Finishes row `y`, once. Pictures on their side need their rows from first to last.
  void Commit(uint32_t y);

  /// How many rows from `y` on can be decoded before the first of them is committed.
  uint32_t RowsAhead(uint32_t y) const;
  /// Whether all rows can wait in place until they are committed, in any order.
  bool RowsStay() const { return !source_row_ && !strip_; }
  /// From row to row when RowsStay(); may be negative.
  ptrdiff_t RowStep() const { return upside_down_ ? -target_.row_bytes : target_.row_bytes; }

 private:
  uint8_t* Place(uint32_t y);
  void FlushStrip(uint32_t first, uint32_t rows);

  const uint32_t width_, height_;
  const int orientation_;
  const bool upside_down_;
  const size_t pixel_bytes_;  ///< of the buffer
  const PixelBuffer target_;
  const std::unique_ptr<RowFinisher> finisher_;
  std::unique_ptr<uint8_t[]> source_row_;  ///< one row, unless in the buffer's layout
  std::unique_ptr<uint8_t[]> strip_;       ///< kStripRows rows, for orientations 5 to 8
};

}  // namespace kelto::stills
