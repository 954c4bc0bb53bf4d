#include "resample/filtered_store.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kelto {
namespace {

uint8_t Mixed(uint8_t picture, float coverage, uint8_t background) {
  return static_cast<uint8_t>(std::nearbyint(static_cast<float>(picture) * coverage +
                                             static_cast<float>(background) * (1.0f - coverage)));
}

}  // namespace

void StoreFiltered(const FilteredPlan& plan, size_t row, size_t first, size_t count,
                   const uint8_t* bytes) {
  const size_t pixelBytes = plan.canvas.format == PixelFormat::kPacked422 ? 2 : 4;
  uint8_t* const to = plan.canvas.Row(plan.rows.first + static_cast<int32_t>(row)) +
                      pixelBytes * static_cast<size_t>(plan.columns.first) + first;
  const float* const columnCoverage = plan.columnCoverage.data();
  const auto mix = [&](size_t i) {
    to[i] =
        Mixed(bytes[i], columnCoverage[(first + i) / pixelBytes] * plan.rowCoverage[row], to[i]);
  };
  size_t begin = 0, end = count;
  if (plan.rowCoverage[row] < 1.0f) {
    end = 0;
  } else {
    while (begin < end && columnCoverage[(first + begin) / pixelBytes] < 1.0f) ++begin;
    while (begin < end && columnCoverage[(first + end - 1) / pixelBytes] < 1.0f) --end;
  }
  for (size_t i = 0; i < begin; ++i) mix(i);
  std::memcpy(to + begin, bytes + begin, end - begin);
  for (size_t i = end; i < count; ++i) mix(i);
}

}  // namespace kelto
