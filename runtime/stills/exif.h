// The one thing that drawing needs from EXIF.
#pragma once

#include <cstdint>
#include <span>

namespace kelto::stills {

/// Orientation 1 to 8 of an EXIF block, with or without its leading "Exif\0\0". Absent, zero and
/// senseless values, and damaged blocks, give 1.
int ExifOrientation(std::span<const uint8_t> exif);

/// The same rule for orientations found elsewhere.
inline int ValidOrientation(int orientation) {
  return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

}  // namespace kelto::stills
