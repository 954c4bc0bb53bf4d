#include "framing/cached_size.h"

#include <algorithm>

#include "platform/hfx.h"

namespace kelto {

bool KeepsNaturalSize(int32_t playMode, PixelSize picture, PixelSize output) {
  if (playMode == hfxPlayModeRender || output.width == 0 || output.height == 0) return true;
  // Unsigned: an output of width 1 leaves no picture narrow enough.
  return static_cast<uint32_t>(picture.width) < static_cast<uint32_t>(output.width) - 1u &&
         static_cast<uint32_t>(picture.height) < static_cast<uint32_t>(output.height) - 1u;
}

PixelSize ReducedSize(PixelSize picture, PixelSize output) {
  const auto follow = [](int32_t given, int32_t across, int32_t along) {
    return std::max(1, static_cast<int32_t>(static_cast<double>(given) * across / along));
  };
  if (picture.width > picture.height) {
    return {std::max(1, output.width), follow(output.width, picture.height, picture.width)};
  }
  return {follow(output.height, picture.width, picture.height), std::max(1, output.height)};
}

}  // namespace kelto
