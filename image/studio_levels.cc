#include "image/studio_levels.h"

#include <cstring>

#include "platform/vector_clones.h"

namespace kelto {
namespace {

/// studioLevelTable of two bytes at a time, in bits 0..7 and 16..23: vectors have no tables.
constexpr uint32_t StudioLevels(uint32_t pair) {
  const uint32_t times55 = (pair << 6) - (pair << 3) - pair;
  return (times55 + 0x04200420) >> 6 & 0x00FF00FF;
}

constexpr bool StudioLevelsAreTheTable() {
  for (uint32_t level = 0; level < 256; ++level) {
    const uint32_t expected = studioLevelTable[level];
    if (StudioLevels(level | (255 - level) << 16) % 256 != expected) return false;
    if (StudioLevels(level << 16 | (255 - level)) >> 16 != expected) return false;
  }
  return true;
}
static_assert(StudioLevelsAreTheTable());

/// Passes a row's bytes through studioLevelTable; those of `keptBytes` of each pixel stay.
KELTO_VECTOR_CLONES
void CompressRow(char* row, int32_t width, uint32_t keptBytes) {
  for (int32_t column = 0; column < width; ++column) {
    uint32_t pixel;
    std::memcpy(&pixel, row + ptrdiff_t{4} * column, 4);
    const uint32_t levels = StudioLevels(pixel & 0x00FF00FF) | StudioLevels(pixel >> 8 & 0x00FF00FF)
                                                                   << 8;
    pixel = (levels & ~keptBytes) | (pixel & keptBytes);
    std::memcpy(row + ptrdiff_t{4} * column, &pixel, 4);
  }
}

}  // namespace

void CompressToStudioRange(const IplImage& image) {
  const uint32_t alpha = image.channelSeq[0] == 'A' ? 0x000000FF : 0xFF000000;
  for (int32_t row = 0; row < image.height; ++row) {
    CompressRow(image.imageData + ptrdiff_t{row} * image.widthStep, image.width, alpha);
  }
}

}  // namespace kelto
