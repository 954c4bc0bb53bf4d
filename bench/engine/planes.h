// A picture in planes of 4:2:2, as the peers take it.
#pragma once

#include "bench/engine/view.h"

namespace kelto::bench {

struct Planes {
  std::vector<uint8_t> bytes[3];  ///< Y, Cb, Cr
  int strides[3];                 ///< bytes from row to row
  int32_t width, height;

  Planes(int32_t pixelsAcross, int32_t pixelsDown) : width(pixelsAcross), height(pixelsDown) {
    for (int i = 0; i < 3; ++i) {
      strides[i] = i == 0 ? width : width / 2;
      // Some readers take a whole vector at the end of the last row.
      bytes[i] = NoisyBytes(static_cast<size_t>(strides[i]) * static_cast<size_t>(height) + 64);
    }
  }
};

}  // namespace kelto::bench
