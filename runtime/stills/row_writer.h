// The last steps that every picture shares: colours to sRGB, alpha over black, and rows turned
// upright into the caller's buffer.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/stills/color.h"
#include "runtime/stills/decoder.h"

namespace kelto::stills {

/// What alpha means in the rows that a decoder hands over.
enum class Alpha {
  kOpaque,         ///< alpha is 255 throughout, or full scale
  kIgnored,        ///< nothing: what damaged files leave there must not show
  kStraight,       ///< colours are whole, alpha apart
  kPremultiplied,  ///< colours are multiplied by alpha already
};

/// Takes stored rows and leaves finished ones in the caller's buffer. There is no second copy of
/// the picture: rows in kBgra8 are decoded where they belong, those of pictures on their side
/// (orientations 5 to 8) pass through a strip of a few rows.
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
  bool RowsStay() const { return format_ == PixelFormat::kBgra8 && !strip_; }
  /// From row to row when RowsStay(); may be negative.
  ptrdiff_t RowStep() const { return upside_down_ ? -target_.row_bytes : target_.row_bytes; }

 private:
  uint8_t* Place(uint32_t y);
  void FlushStrip(uint32_t first, uint32_t rows);

  const uint32_t width_, height_;
  const int orientation_;
  const bool upside_down_;
  const PixelFormat format_;
  const Alpha alpha_;
  const PixelBuffer target_;
  const ColorConverter converter_;
  std::unique_ptr<uint8_t[]> source_row_;  ///< one row, unless in kBgra8
  std::unique_ptr<uint8_t[]> strip_;       ///< kStripRows rows, for orientations 5 to 8
};

}  // namespace kelto::stills
