// What a JPEG file carries beside its picture.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/stills/still_file.h"

namespace kelto::stills {

struct JpegMetadata {
  std::vector<uint8_t> exif;  ///< from "Exif\0\0" on, or empty
  std::vector<uint8_t> icc;   ///< put together from its parts; empty when a part is missing
  bool icc_lost = false;      ///< whether one is
};

/// Walks the marker segments up to the first scan. Reads only the segments it keeps: at most one
/// EXIF block and 255 parts of a profile, 16 MiB together. A malformed segment ends the walk; what
/// to make of the file is the decoder's affair.
JpegMetadata ReadJpegMetadata(StillFile& file);

}  // namespace kelto::stills
