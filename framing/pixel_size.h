// The size of a picture or a frame.
#pragma once

#include <cstdint>

namespace kelto {

/// In pixels.
struct PixelSize {
  int32_t width = 0, height = 0;
  bool operator==(const PixelSize&) const = default;
};

}  // namespace kelto
