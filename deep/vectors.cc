// The filtered deep picture in vectors of floats.
//
// First pass, down the columns: the picture's rows are taken in blocks, each row read and converted
// to floats once, and what a block adds to each destination row is summed and added to it. Two rows
// are summed at a time, since they share most of the picture's. Second pass, along the rows, once
// they are complete: a vector holds neighbouring pixels, each multiplied by its weight; several
// rows share the weights. Blocks and vectors begin at fixed rows and columns of the picture, so
// that a frame does not depend on which part of it is drawn at a time. Sums in blocks are also more
// exact: each addition rounds all that was summed before.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "deep/vectors.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <algorithm>
#include <vector>

#include "deep/along-inl.h"
#include "deep/down-inl.h"
#include "deep/finish-inl.h"
#include "deep/plan.h"
#include "targets/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

int64_t DrawDeepOnTarget(const DeepPlan& plan) {
  DrawDeepPlain(plan);
  return HWY_TARGET;
}

#else
namespace {

/// The weights of each entry, normalised.
std::vector<float> NormalisedWeights(const WeightTable& table, float factor) {
  std::vector<float> weights(table.weights);
  for (const WeightTable::Entry& entry : table.entries) {
    for (int32_t tap = 0; tap < entry.count; ++tap) {
      weights[entry.offset + static_cast<size_t>(tap)] *= entry.normaliser * factor;
    }
  }
  return weights;
}

/// Into how many parts columns are divided so that as many rows as are on their way fit half of a
/// second-level cache of 1 MiB.
size_t PartsOf(const WeightTable& columns, size_t rows) {
  constexpr size_t kCacheFloats = size_t{512} * 1024 / sizeof(float);
  constexpr size_t kFewest = 32;  // columns: their windows overlap
  const Range pixels = columns.ImagePixels();
  const size_t floats = 4 * static_cast<size_t>(pixels.end - pixels.first) * rows;
  const size_t most = std::max<size_t>(columns.entries.size() / kFewest, 1);
  return std::min(floats / kCacheFloats + 1, most);
}

/// All rows of a part of the columns, the first of which is `firstColumn`.
void DrawColumns(DownPass& down, const AlongGroups& columns, DeepFinish& finish, size_t firstColumn,
                 size_t rowCount) {
  const size_t stride = (4 * columns.entries.size() + kLanes - 1) / kLanes * kLanes;
  const FloatBuffer results(kTogether * stride + kLanes);
  for (size_t first = 0; first < rowCount; first += kTogether) {
    const size_t end = std::min(first + kTogether, rowCount);
    down.Advance(first, end);
    float* rows[kTogether];
    for (size_t i = 0; i < kTogether; ++i) rows[i] = down.Row(std::min(first + i, end - 1));
    FilterAlongTogether(columns, rows, results.get(), stride, down.Ahead());
    for (size_t i = first; i < end; ++i) {
      finish.Row(i, firstColumn, columns.entries.size(), results.get() + (i - first) * stride);
    }
  }
}

}  // namespace

int64_t DrawDeepOnTarget(const DeepPlan& plan) {
  const std::vector<float> columnWeights = NormalisedWeights(plan.columnWeights, 1.0f);
  // In linear light samples are brought to 0 .. 1 before they are weighed.
  const std::vector<float> rowWeights = NormalisedWeights(
      plan.rowWeights, plan.linearLight ? 1.0f : 1.0f / FullScale(plan.picture.sample));
  const RowOrder order(plan.rowWeights, kTogether);
  DownPass down(plan, rowWeights, order);
  DeepFinish finish(plan);
  // A part of the columns at a time, whose rows stay in the second-level cache.
  const size_t count = plan.columnWeights.entries.size();
  const size_t parts = PartsOf(plan.columnWeights, order.most);
  for (size_t part = 0; part < parts; ++part) {
    const size_t first = count * part / parts, end = count * (part + 1) / parts;
    const AlongGroups columns(plan.columnWeights, columnWeights, first, end);
    down.Begin(columns.base, columns.pixels);
    DrawColumns(down, columns, finish, first, plan.rowWeights.entries.size());
  }
  return HWY_TARGET;
}

#endif
}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto {

HWY_EXPORT(DrawDeepOnTarget);

Target DrawDeepVectors(const DeepPlan& plan) {
  return vectors::Named(HWY_DYNAMIC_DISPATCH(DrawDeepOnTarget)(plan));
}

}  // namespace kelto
#endif
