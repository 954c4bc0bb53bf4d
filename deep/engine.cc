#include "deep/engine.h"

#include <algorithm>
#include <cstring>

#include "deep/plan.h"

namespace kelto {
namespace {

void SetOpaque(const DeepTarget& to, int32_t y, Range columns) {
  for (ptrdiff_t x = columns.first; x < columns.end; ++x) {
    if (to.sample == DeepSample::kUnsigned16) {
      to.Row<uint16_t>(y)[4 * x + 3] = 65535;
    } else {
      to.Row<float>(y)[4 * x + 3] = 1.0f;
    }
  }
}

/// Shows what lies behind the picture in `columns` of a row of the target, whose own rows the
/// backdrop may be.
void FillBehind(const DeepPlan& plan, int32_t y, Range columns) {
  if (columns.Empty()) return;
  const DeepTarget& to = plan.target;
  const size_t pixelBytes = PixelBytes(to.sample);
  const bool backdrop = plan.backdrop.pixels != nullptr && y < plan.backdrop.height;
  const int32_t colourFrom =
      backdrop ? std::clamp(plan.backdrop.width, columns.first, columns.end) : columns.first;
  if (backdrop && to.sample == plan.backdrop.sample) {
    const size_t offset = pixelBytes * static_cast<size_t>(columns.first);
    std::memmove(to.Row<uint8_t>(y) + offset, plan.backdrop.Row<uint8_t>(y) + offset,
                 pixelBytes * static_cast<size_t>(colourFrom - columns.first));
    if (!to.hasAlpha || !plan.backdrop.hasAlpha) SetOpaque(to, y, {columns.first, colourFrom});
  } else {
    for (int32_t x = columns.first; x < colourFrom; ++x) {
      WritePixel(to, x, y, ReadPixel(plan.backdrop, x, y));
    }
  }
  if (colourFrom == columns.end) return;
  WritePixel(to, colourFrom, y, plan.background);
  uint8_t* const first = to.Row<uint8_t>(y) + pixelBytes * static_cast<size_t>(colourFrom);
  for (int32_t x = 1; x < columns.end - colourFrom; ++x) {
    std::memcpy(first + pixelBytes * static_cast<size_t>(x), first, pixelBytes);
  }
}

}  // namespace

Target DrawDeep(const DeepPlan& plan) {
  const Range shown = plan.ShowsPicture() ? plan.columns : Range{};
  for (int32_t y = 0; y < plan.target.height; ++y) {
    if (shown.Empty() || y < plan.rows.first || y >= plan.rows.end) {
      FillBehind(plan, y, {0, plan.target.width});
    } else {
      FillBehind(plan, y, {0, shown.first});
      FillBehind(plan, y, {shown.end, plan.target.width});
    }
  }
  if (shown.Empty()) return CurrentTarget();
  if (plan.nearest) {
    DrawDeepNearest(plan);
    return Target::kScalar;
  }
  if (CurrentTarget() != Target::kScalar) return DrawDeepVectors(plan);
  DrawDeepPlain(plan);
  return Target::kScalar;
}

void RenderDeep(const DeepJob& job, const DeepSource& picture, const DeepTarget& target) {
  if (target.pixels == nullptr || target.width < 1 || target.height < 1) return;
  DrawDeep(PlanDeep(job, picture, target));
}

}  // namespace kelto
