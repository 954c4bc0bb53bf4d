// The second pass of the deep picture in vectors, along the rows. Compiled for each target by the
// source that includes it behind Highway's foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "deep/plan.h"
#include "deep/strip-inl.h"

// Once for each target.
#if defined(KELTO_DEEP_ALONG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_DEEP_ALONG_INL_H_
#undef KELTO_DEEP_ALONG_INL_H_
#else
#define KELTO_DEEP_ALONG_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

constexpr size_t kTogether = 8;  ///< destination rows at a time

/// Groups of kPixels weights by which pixels of a column are multiplied, the first pixel at a
/// multiple of kPixels in the picture, zeros where a group is no pixel of the column's.
struct AlongGroups {
  struct Entry {
    size_t pixel = 0;    ///< the first, counted from the picture's column `base`
    size_t weights = 0;  ///< of its weights in `weights`
    size_t groups = 0;
  };
  int32_t base = 0;
  int32_t pixels = 0;  ///< of the picture that are needed from there on
  std::vector<Entry> entries;
  std::vector<float> weights;  ///< kLanes more than there are, which loads may read

  /// Those of columns `first` to `end` of a table.
  AlongGroups(const WeightTable& table, const std::vector<float>& normalised, size_t first,
              size_t end) {
    constexpr auto kGroupPixels = static_cast<int32_t>(kPixels);
    base = INT32_MAX;
    for (size_t i = first; i < end; ++i) {
      base = std::min(base, table.entries[i].first / kGroupPixels * kGroupPixels);
      pixels = std::max(pixels, table.entries[i].first + table.entries[i].count);
    }
    pixels -= base;
    for (size_t i = first; i < end; ++i) {
      const WeightTable::Entry& entry = table.entries[i];
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

/// Writes or adds the sums of four vectors' pixels, one to each of four rows `stride` floats apart.
HWY_INLINE void StorePixels(DeepVector a, DeepVector b, DeepVector c, DeepVector d, bool add,
                            float* to, size_t stride) {
  const FourFloats four;
  const auto store = [&](hn::Vec<FourFloats> pixel, float* at) {
    hn::StoreU(add ? hn::Add(pixel, hn::LoadU(four, at)) : pixel, four, at);
  };
#if HWY_MAX_BYTES == 64
  const Floats floats;
  const hn::Full256<float> half;
  const auto ab = hn::Add(hn::ConcatLowerLower(floats, b, a), hn::ConcatUpperUpper(floats, b, a));
  const auto cd = hn::Add(hn::ConcatLowerLower(floats, d, c), hn::ConcatUpperUpper(floats, d, c));
  // Each has two pixels for either row: the first of all four, and the second.
  const DeepVector sums = hn::Add(DeepVector{_mm512_shuffle_f32x4(ab.raw, cd.raw, 0x88)},
                                  DeepVector{_mm512_shuffle_f32x4(ab.raw, cd.raw, 0xDD)});
  const auto low = hn::LowerHalf(half, sums), high = hn::UpperHalf(half, sums);
  store(hn::LowerHalf(four, low), to);
  store(hn::UpperHalf(four, low), to + stride);
  store(hn::LowerHalf(four, high), to + 2 * stride);
  store(hn::UpperHalf(four, high), to + 3 * stride);
#elif HWY_MAX_BYTES == 32
  const auto sum = [&](DeepVector v) {
    return hn::Add(hn::LowerHalf(four, v), hn::UpperHalf(four, v));
  };
  store(sum(a), to);
  store(sum(b), to + stride);
  store(sum(c), to + 2 * stride);
  store(sum(d), to + 3 * stride);
#else
  store(a, to);
  store(b, to + stride);
  store(c, to + 2 * stride);
  store(d, to + 3 * stride);
#endif
}

/// Groups that are summed before they are added to others, since each addition rounds.
constexpr size_t kLongSum = HWY_MAX_BYTES == 16 ? 32 : 64;

/// The second pass of kTogether rows into rows `toStride` floats apart.
HWY_NOINLINE void FilterAlongTogether(const AlongGroups& columns, const float* const* rows,
                                      float* to, size_t toStride, RowsAhead& ahead) {
  const Floats floats;
  alignas(64) int32_t lanes[kLanes];
  for (size_t i = 0; i < kLanes; ++i) lanes[i] = static_cast<int32_t>(i / 4);
  const auto spread = hn::SetTableIndices(floats, lanes);
  static_assert(kTogether == 8);
  for (const AlongGroups::Entry& entry : columns.entries) {
    ahead.Fetch(4);
    const size_t from = 4 * entry.pixel;
    const float* const weights = columns.weights.data() + entry.weights;
    for (size_t group = 0; group < entry.groups;) {
      const size_t end = std::min(group + kLongSum, entry.groups);
      const bool add = group > 0;
      auto sum0 = hn::Zero(floats), sum1 = sum0, sum2 = sum0, sum3 = sum0;
      auto sum4 = sum0, sum5 = sum0, sum6 = sum0, sum7 = sum0;
      for (; group < end; ++group) {
        const auto weight =
            hn::TableLookupLanes(hn::LoadU(floats, weights + group * kPixels), spread);
        const size_t at = from + group * kLanes;
        sum0 = hn::MulAdd(weight, hn::Load(floats, rows[0] + at), sum0);
        sum1 = hn::MulAdd(weight, hn::Load(floats, rows[1] + at), sum1);
        sum2 = hn::MulAdd(weight, hn::Load(floats, rows[2] + at), sum2);
        sum3 = hn::MulAdd(weight, hn::Load(floats, rows[3] + at), sum3);
        sum4 = hn::MulAdd(weight, hn::Load(floats, rows[4] + at), sum4);
        sum5 = hn::MulAdd(weight, hn::Load(floats, rows[5] + at), sum5);
        sum6 = hn::MulAdd(weight, hn::Load(floats, rows[6] + at), sum6);
        sum7 = hn::MulAdd(weight, hn::Load(floats, rows[7] + at), sum7);
      }
      StorePixels(sum0, sum1, sum2, sum3, add, to, toStride);
      StorePixels(sum4, sum5, sum6, sum7, add, to + 4 * toStride, toStride);
    }
    to += 4;
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
