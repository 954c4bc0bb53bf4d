// Samples of a TIFF row to the layouts of RowWriter.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/stills/tiff_file.h"
#include "runtime/stills/tiff_rows.h"

namespace kelto::stills {

/// What is kept of samples that have more than eight bits.
enum class TiffDepth {
  kBytes,  ///< eight bits
  kWords,  ///< 16 bits, of colours that are not ink
  kAll,
};

/// Turns rows of grey, palette, RGB and CMYK samples of up to 16 bits, and of floating-point grey
/// and RGB, into pixels.
class TiffUnpacker {
 public:
  TiffUnpacker(TiffFile& tiff, const TiffForm& form, TiffDepth depth);

  PixelFormat format() const { return format_; }
  void Unpack(const TiffRow& row, uint8_t* to);

 private:
  template <typename T>
  void Spread(const TiffRow& row, uint8_t* to) const;
  void SpreadFloats(const TiffRow& row, uint8_t* to) const;
  /// Packed samples to a byte each, grey ones scaled to 0..255.
  TiffRow UnpackBits(const TiffRow& row);

  const TiffForm& form_;
  PixelFormat format_;
  std::vector<uint8_t> palette_;  ///< R, G, B of each index
  std::vector<uint8_t> bytes_;
};

}  // namespace kelto::stills
