// GIF files for tests, written without compression.
#pragma once

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

struct GifFrame {
  int left, top, width, height;
  int index;  ///< of every pixel
};

/// A screen with a palette of black, red, green and blue and one frame of one colour on it, behind
/// a comment. Index `transparent` is; -1: none.
Bytes EncodeGif(int width, int height, const GifFrame& frame, int transparent = -1);

}  // namespace kelto::stills
