// Where the first frame of a GIF lies. The imaging component gives the frame alone.
#pragma once

#include <cstdint>
#include <optional>

#include "runtime/stills/still_file.h"

namespace kelto::stills {

/// The picture as shown is the screen; the frame may be smaller, and may reach outside.
struct GifScreen {
  uint32_t width, height;
  uint32_t left, top;  ///< of the first frame
};

/// Nothing when the file is no GIF or ends before its first frame. Leaves the file at its
/// beginning.
std::optional<GifScreen> ReadGifScreen(StillFile& file);

}  // namespace kelto::stills
