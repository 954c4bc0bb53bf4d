// TIFF test files, made by libtiff.
#pragma once

#include <tiffio.h>

#include <functional>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

struct TiffSpec {
  int width = 0, height = 0;
  int bits = 8, samples = 3;
  int photometric = PHOTOMETRIC_RGB;
  int compression = COMPRESSION_NONE;
  bool separate = false;
  int tile = 0;            ///< side of a tile; 0 for strips
  int rows_per_strip = 5;  ///< so that pictures have several strips
  const char* mode = "w";  ///< "wb" big-endian, "w8" 64-bit offsets
  /// Value of sample `s` at (x, y); of 32 bits, its bits.
  std::function<unsigned(int x, int y, int s)> sample;
  /// Sets further tags.
  std::function<void(TIFF*)> tags;
};

/// Writes the file and gives its bytes.
Bytes EncodeTiff(const TiffSpec& spec, const std::string& path);
/// An RGB TIFF of the gradient.
TiffSpec GradientTiff(int width, int height);

}  // namespace kelto::stills
