#include "resample/nearest_pixels.h"

#include <cstddef>
#include <utility>

namespace kelto {

TakenBytes TakenBytes422(const ChromaBytes& chroma, int32_t firstColumn) {
  const auto even = static_cast<uint8_t>(chroma.even), odd = static_cast<uint8_t>(chroma.odd);
  TakenBytes taken = {2, {0, even}, {0, odd}};
  if (firstColumn % 2 != 0) std::swap(taken.first, taken.second);
  return taken;
}

Target NearestPixels(const uint8_t* sourceRow, const std::vector<int32_t>& columns,
                     const TakenBytes& taken, uint8_t* to) {
  const auto copy = CurrentTarget() == Target::kScalar ? NearestPixelsScalar : NearestPixelsVectors;
  return copy(sourceRow, columns.data(), columns.size(), taken, to);
}

Target NearestPixelsScalar(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                           const TakenBytes& taken, uint8_t* to) {
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* const from = sourceRow + ptrdiff_t{4} * columns[i];
    const std::array<uint8_t, 4>& bytes = i % 2 == 0 ? taken.first : taken.second;
    for (int32_t byte = 0; byte < taken.perPixel; ++byte) {
      *to++ = from[bytes[static_cast<size_t>(byte)]];
    }
  }
  return Target::kScalar;
}

}  // namespace kelto
