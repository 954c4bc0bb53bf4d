// The filtered deep picture in vectors of floats.
//
// First pass, down the columns, for a batch of destination rows: the picture's columns are taken in
// strips that stay in the first-level cache while all rows of the batch are summed from them; a
// strip's rows are converted to floats once. Two destination rows are summed at a time, since they
// share most of the picture's rows. Second pass, along the rows: a vector holds neighbouring
// pixels, each multiplied by its weight; several rows share the weights. Pixels go to vectors by
// their column in the picture and are summed in that order, so that a frame does not depend on
// which part of it is drawn at a time.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "deep/vectors.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <algorithm>
#include <vector>

#include "deep/finish-inl.h"
#include "deep/plan.h"
#include "deep/strip-inl.h"
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

constexpr size_t kBatchRows = 16;  ///< destination rows of a first pass
constexpr size_t kTogether = 8;    ///< and of a second, whose sums fill the registers

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

/// Adds `count` of a strip's rows from `from` on to one destination row's sums.
HWY_INLINE void AddRows(const float* from, const float* weights, int32_t count,
                        DeepVector (&sums)[kStripVectors]) {
  const Floats floats;
  for (int32_t tap = 0; tap < count; ++tap, from += kStripFloats) {
    const auto weight = hn::Set(floats, weights[tap]);
    for (size_t i = 0; i < kStripVectors; ++i) {
      sums[i] = hn::MulAdd(weight, hn::Load(floats, from + i * kLanes), sums[i]);
    }
  }
}

/// Many numbers are summed in parts, since each addition rounds what was summed before, and where
/// there is no fused multiply-add each product, too.
constexpr int32_t kLongSum = HWY_MAX_BYTES == 16 ? 32 : 64;

bool IsLong(const WeightTable::Entry& entry) { return entry.count > kLongSum; }

/// What an entry has in the `block`th kLongSum rows of the picture.
WeightTable::Entry PartOf(const WeightTable::Entry& entry, int32_t block) {
  WeightTable::Entry part = entry;
  part.first = std::max(entry.first, block * kLongSum);
  part.count =
      std::max(std::min(entry.first + entry.count, (block + 1) * kLongSum) - part.first, 0);
  part.offset += static_cast<size_t>(part.first - entry.first);
  return part;
}

HWY_INLINE void StoreSums(const DeepVector (&sums)[kStripVectors], bool add, float* to) {
  const Floats floats;
  for (size_t i = 0; i < kStripVectors; ++i, to += kLanes) {
    hn::Store(add ? hn::Add(sums[i], hn::Load(floats, to)) : sums[i], floats, to);
  }
}

/// Sums two destination rows of a strip, as OverlapInOrder has them. The sums are added to what is
/// there, or stored.
HWY_NOINLINE void SumTwoRows(const DeepStrip& strip, const WeightTable::Entry& upper,
                             const WeightTable::Entry& lower, const float* weights, bool addUpper,
                             bool addLower, float* toUpper, float* toLower) {
  const Floats floats;
  DeepVector sums[kStripVectors], sumsBelow[kStripVectors];
  for (size_t i = 0; i < kStripVectors; ++i) sums[i] = sumsBelow[i] = hn::Zero(floats);
  const int32_t before = lower.first - upper.first;
  const int32_t common = upper.count - before;
  const float* weightsUpper = weights + upper.offset;
  const float* weightsLower = weights + lower.offset;
  AddRows(strip.Row(upper.first), weightsUpper, before, sums);
  const float* from = strip.Row(lower.first);
  weightsUpper += before;
  for (int32_t tap = 0; tap < common; ++tap, from += kStripFloats) {
    const auto weight = hn::Set(floats, weightsUpper[tap]);
    const auto weightBelow = hn::Set(floats, weightsLower[tap]);
    for (size_t i = 0; i < kStripVectors; ++i) {
      const auto samples = hn::Load(floats, from + i * kLanes);
      sums[i] = hn::MulAdd(weight, samples, sums[i]);
      sumsBelow[i] = hn::MulAdd(weightBelow, samples, sumsBelow[i]);
    }
  }
  AddRows(from, weightsLower + common, lower.count - common, sumsBelow);
  StoreSums(sums, addUpper, toUpper);
  StoreSums(sumsBelow, addLower, toLower);
}

HWY_NOINLINE void SumOneRow(const DeepStrip& strip, const WeightTable::Entry& entry,
                            const float* weights, bool add, float* to) {
  DeepVector sums[kStripVectors];
  for (DeepVector& sum : sums) sum = hn::Zero(Floats());
  AddRows(strip.Row(entry.first), weights + entry.offset, entry.count, sums);
  StoreSums(sums, add, to);
}

/// Whether the second entry begins and ends no earlier than the first, and begins before that ends.
/// Mirroring at a picture's ends makes others.
bool OverlapInOrder(const WeightTable::Entry& upper, const WeightTable::Entry& lower) {
  return upper.first <= lower.first && lower.first <= upper.first + upper.count &&
         upper.first + upper.count <= lower.first + lower.count;
}

/// One destination row of a strip, of whose picture rows all have been read.
void FilterDownRow(const DeepStrip& strip, const WeightTable::Entry& entry, const float* weights,
                   float* to) {
  if (!IsLong(entry)) return SumOneRow(strip, entry, weights, false, to);
  for (int32_t block = entry.first / kLongSum;; ++block) {
    const WeightTable::Entry part = PartOf(entry, block);
    if (part.count == 0) return;
    SumOneRow(strip, part, weights, part.first > entry.first, to);
  }
}

/// Two of them, which overlap in order and are both long or both not.
void FilterDownTwoRows(const DeepStrip& strip, const WeightTable::Entry& upper,
                       const WeightTable::Entry& lower, const float* weights, float* toUpper,
                       float* toLower) {
  if (!IsLong(upper)) {
    return SumTwoRows(strip, upper, lower, weights, false, false, toUpper, toLower);
  }
  for (int32_t block = upper.first / kLongSum;; ++block) {
    const WeightTable::Entry above = PartOf(upper, block), below = PartOf(lower, block);
    if (above.count > 0 && below.count > 0) {
      SumTwoRows(strip, above, below, weights, above.first > upper.first, below.first > lower.first,
                 toUpper, toLower);
    } else if (above.count > 0) {
      SumOneRow(strip, above, weights, above.first > upper.first, toUpper);
    } else if (below.count > 0) {
      SumOneRow(strip, below, weights, below.first > lower.first, toLower);
    } else {
      return;
    }
  }
}

/// The first pass of a batch into rows `stride` floats apart.
void FilterDownBatch(const WeightTable& table, const float* weights, size_t first, size_t end,
                     DeepStrip& strip, float* to, size_t stride) {
  Range rows = {table.entries[first].first, 0};
  for (size_t i = first; i < end; ++i) {
    const WeightTable::Entry& entry = table.entries[i];
    rows.first = std::min(rows.first, entry.first);
    rows.end = std::max(rows.end, entry.first + entry.count);
  }
  for (size_t at = 0; at < stride; at += kStripFloats) {
    strip.Begin(at / 4, rows);
    for (size_t i = first; i < end;) {
      const WeightTable::Entry& entry = table.entries[i];
      float* const row = to + (i - first) * stride + at;
      const WeightTable::Entry& next = table.entries[std::min(i + 1, end - 1)];
      strip.ReadUpTo(std::max(entry.first + entry.count, next.first + next.count));
      if (i + 1 < end && OverlapInOrder(entry, next) && IsLong(entry) == IsLong(next)) {
        FilterDownTwoRows(strip, entry, next, weights, row, row + stride);
        i += 2;
      } else {
        FilterDownRow(strip, entry, weights, row);
        ++i;
      }
    }
  }
}

/// Groups of kPixels weights by which pixels of a column are multiplied, the first pixel at a
/// multiple of kPixels in the picture, zeros where a group is no pixel of the column's.
struct AlongGroups {
  struct Entry {
    size_t pixel = 0;    ///< the first, counted from the picture's column `base`
    size_t weights = 0;  ///< of its weights in `weights`
    size_t groups = 0;
  };
  int32_t base = 0;
  std::vector<Entry> entries;
  std::vector<float> weights;  ///< kLanes more than there are, which loads may read

  AlongGroups(const WeightTable& table, const std::vector<float>& normalised) {
    constexpr auto kGroupPixels = static_cast<int32_t>(kPixels);
    base = table.ImagePixels().first / kGroupPixels * kGroupPixels;
    for (const WeightTable::Entry& entry : table.entries) {
      const int32_t before = entry.first % kGroupPixels;
      Entry group;
      group.pixel = static_cast<size_t>(entry.first - before - base);
      group.weights = weights.size();
      group.groups = (static_cast<size_t>(before + entry.count) + kPixels - 1) / kPixels;
      weights.resize(group.weights + group.groups * kPixels, 0.0f);
      std::copy_n(normalised.begin() + static_cast<ptrdiff_t>(entry.offset), entry.count,
                  weights.begin() + static_cast<ptrdiff_t>(group.weights) + before);
      entries.push_back(group);
    }
    weights.resize(weights.size() + kLanes, 0.0f);
  }
};

/// The sum of a vector's pixels.
HWY_INLINE hn::Vec<FourFloats> SumOfPixels(DeepVector v) {
#if HWY_MAX_BYTES == 64
  const hn::Full256<float> half;
  const auto sum = hn::Add(hn::LowerHalf(half, v), hn::UpperHalf(half, v));
  return hn::Add(hn::LowerHalf(FourFloats(), sum), hn::UpperHalf(FourFloats(), sum));
#elif HWY_MAX_BYTES == 32
  return hn::Add(hn::LowerHalf(FourFloats(), v), hn::UpperHalf(FourFloats(), v));
#else
  return v;
#endif
}

/// The second pass of `kRows` rows `stride` floats apart into rows `toStride` floats apart.
template <size_t kRows>
HWY_NOINLINE void FilterAlongTogether(const AlongGroups& columns, const float* rows, size_t stride,
                                      float* to, size_t toStride) {
  const Floats floats;
  alignas(64) int32_t lanes[kLanes];
  for (size_t i = 0; i < kLanes; ++i) lanes[i] = static_cast<int32_t>(i / 4);
  const auto spread = hn::SetTableIndices(floats, lanes);
  for (const AlongGroups::Entry& entry : columns.entries) {
    const float* from = rows + 4 * entry.pixel;
    const float* weights = columns.weights.data() + entry.weights;
    for (size_t group = 0; group < entry.groups;) {
      const size_t end = std::min(group + kLongSum, entry.groups);
      const bool add = group > 0;
      DeepVector sums[kRows];
      for (DeepVector& sum : sums) sum = hn::Zero(floats);
      for (; group < end; ++group, from += kLanes, weights += kPixels) {
        const auto weight = hn::TableLookupLanes(hn::LoadU(floats, weights), spread);
        for (size_t row = 0; row < kRows; ++row) {
          sums[row] = hn::MulAdd(weight, hn::Load(floats, from + row * stride), sums[row]);
        }
      }
      for (size_t row = 0; row < kRows; ++row) {
        float* const at = to + row * toStride;
        const auto sum = SumOfPixels(sums[row]);
        hn::StoreU(add ? hn::Add(sum, hn::LoadU(FourFloats(), at)) : sum, FourFloats(), at);
      }
    }
    to += 4;
  }
}

}  // namespace

int64_t DrawDeepOnTarget(const DeepPlan& plan) {
  const AlongGroups columns(plan.columnWeights, NormalisedWeights(plan.columnWeights, 1.0f));
  // In linear light samples are brought to 0 .. 1 before, else after all.
  const float factor = plan.linearLight ? 1.0f : 1.0f / FullScale(plan.picture.sample);
  const std::vector<float> rowWeights = NormalisedWeights(plan.rowWeights, factor);
  const int32_t columnsEnd = plan.columnWeights.ImagePixels().end;
  const size_t rowStrips =
      (static_cast<size_t>(columnsEnd - columns.base) + kStripPixels - 1) / kStripPixels;
  const size_t stride = rowStrips * kStripFloats;
  const size_t resultStride = (4 * columns.entries.size() + kLanes - 1) / kLanes * kLanes;
  const FloatBuffer batch(kBatchRows * stride), results(kTogether * resultStride + kLanes);
  DeepStrip strip(plan, columns.base);
  DeepFinish finish(plan);
  const size_t count = plan.rowWeights.entries.size();
  for (size_t first = 0; first < count; first += kBatchRows) {
    const size_t end = std::min(first + kBatchRows, count);
    FilterDownBatch(plan.rowWeights, rowWeights.data(), first, end, strip, batch.get(), stride);
    for (size_t row = first; row < end; row += kTogether) {
      const size_t rows = std::min(kTogether, end - row);
      const float* const from = batch.get() + (row - first) * stride;
      if (rows == kTogether) {
        FilterAlongTogether<kTogether>(columns, from, stride, results.get(), resultStride);
      } else {
        for (size_t i = 0; i < rows; ++i) {
          FilterAlongTogether<1>(columns, from + i * stride, stride,
                                 results.get() + i * resultStride, resultStride);
        }
      }
      for (size_t i = 0; i < rows; ++i) finish.Row(row + i, results.get() + i * resultStride);
    }
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
