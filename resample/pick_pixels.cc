#include "resample/pick_pixels.h"

#include <cstddef>
#include <utility>

namespace kelto {

PickedBytes PickedBytes422(const ChromaBytes& chroma, int32_t firstColumn) {
  const auto even = static_cast<uint8_t>(chroma.even), odd = static_cast<uint8_t>(chroma.odd);
  PickedBytes picked = {2, {0, even}, {0, odd}};
  if (firstColumn % 2 != 0) std::swap(picked.first, picked.second);
  return picked;
}

Target PickPixels(const uint8_t* sourceRow, const std::vector<int32_t>& columns,
                  const PickedBytes& picked, uint8_t* to) {
  const auto pick = CurrentTarget() == Target::Scalar ? PickPixelsScalar : PickPixelsVectors;
  return pick(sourceRow, columns.data(), columns.size(), picked, to);
}

Target PickPixelsScalar(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                        const PickedBytes& picked, uint8_t* to) {
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* const from = sourceRow + ptrdiff_t{4} * columns[i];
    const std::array<uint8_t, 4>& bytes = i % 2 == 0 ? picked.first : picked.second;
    for (int32_t byte = 0; byte < picked.perPixel; ++byte) {
      *to++ = from[bytes[static_cast<size_t>(byte)]];
    }
  }
  return Target::Scalar;
}

}  // namespace kelto
