// Raw rows of a TIFF, in whatever pieces they are stored.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "runtime/stills/tiff_file.h"

namespace kelto::stills {

/// Samples of one row: sample `i` of those used begins at `first[i]`; from pixel to pixel are
/// `step` samples. Samples under 8 bits are packed, highest bits first, with a step of 1.
struct TiffRow {
  std::array<const uint8_t*, 5> first;
  size_t step;
};

/// The pieces in which a TIFF stores its samples: strips, or tiles.
struct TiffPieces {
  TiffPieces(TiffFile& tiff, const TiffForm& form);

  uint32_t rows;     ///< of a strip or tile, at most the picture's
  uint64_t decoded;  ///< bytes of one piece, of one plane where planes are separate
  uint64_t stored;   ///< bytes of the largest one in the file
  bool held;         ///< whether the codec keeps a piece of its own, decoded
  uint64_t planes;   ///< that a picture has: one, unless samples are stored separately

  /// Bytes that the library and its codec take for a piece.
  uint64_t Scratch() const { return stored + (held ? 2 * decoded : 0); }
};

/// Walks the rows from the first to the last. Strips of interleaved samples are decoded a row at a
/// time; separate planes and tiles need a band of rows in memory, as high as a strip or a tile.
class TiffRows {
 public:
  TiffRows(TiffFile& tiff, const TiffForm& form);

  /// Bytes that it will take altogether, the library's included. Throws StillError for pieces that
  /// have no size.
  static uint64_t Scratch(TiffFile& tiff, const TiffForm& form);

  /// The row after the one before, valid until the next call.
  TiffRow Next();

 private:
  void LoadStrips();
  void LoadTiles();
  /// The band of plane `i`; there is one plane unless samples are stored separately.
  uint8_t* Band(int i) { return &bands_[static_cast<size_t>(i) * band_rows_ * row_bytes_]; }

  TiffFile& tiff_;
  const TiffForm& form_;
  const bool tiled_;
  const int planes_;
  uint32_t y_ = 0;
  uint32_t band_rows_ = 1;
  size_t row_bytes_ = 0;  ///< of a plane
  std::unique_ptr<uint8_t[]> bands_, tile_;
};

}  // namespace kelto::stills
