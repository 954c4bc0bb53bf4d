// The first of the filtered path's passes in vectors: sums of neighbouring columns for a block of
// transposed rows. Compiled for each target by the source that includes it behind Highway's
// foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "resample/fixed_weights.h"
#include "resample/transposed_rows-inl.h"
#include "resample/vnni-inl.h"

// Once for each target.
#if defined(KELTO_RESAMPLE_COLUMN_SUMS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_RESAMPLE_COLUMN_SUMS_INL_H_
#undef KELTO_RESAMPLE_COLUMN_SUMS_INL_H_
#else
#define KELTO_RESAMPLE_COLUMN_SUMS_INL_H_
#endif

/// A loop whose turns each have registers of their own.
#ifndef KELTO_UNROLL
#if HWY_COMPILER_CLANG
#define KELTO_UNROLL _Pragma("clang loop unroll(full)")
#else
#define KELTO_UNROLL _Pragma("GCC unroll 4")
#endif
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
KELTO_BEFORE_VNNI_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

/// sum + a * b over pairs of 16-bit halves of each word.
HWY_INLINE WordVector AddProducts(WordVector sum, WordVector a, WordVector b) {
#if HWY_TARGET == HWY_AVX3_DL
  return WordVector{_mm512_dpwssd_epi32(sum.raw, a.raw, b.raw)};
#else
  const Halves halves;
  WordVector unused = hn::Zero(Words());
  return hn::ReorderWidenMulAccumulate(Words(), hn::BitCast(halves, a), hn::BitCast(halves, b), sum,
                                       unused);
#endif
}

#if HWY_TARGET == HWY_AVX3_DL
/// Keeps what is used twice in a register: compilers would load it twice.
HWY_INLINE WordVector InRegister(WordVector v) {
#if HWY_COMPILER_GCC
  asm("" : "+v"(v.raw));
#endif
  return v;
}

/// sum + a * b over the four bytes of each word; those of a are unsigned, those of b signed.
HWY_INLINE WordVector AddByteProducts(WordVector sum, WordVector a, WordVector b) {
  return InRegister(WordVector{_mm512_dpbusd_epi32(sum.raw, a.raw, b.raw)});
}
#endif

/// A sum so far, in even and odd rows.
struct RowSums {
  /// Where weights are cut into bytes, products with lower and with upper bytes are summed apart;
  /// else those of pixels 0 and 2 and of pixels 1 and 3, if there are registers for it: a sum waits
  /// for the product before it.
  static constexpr size_t kChains = kLanes == 16 ? 2 : 1;
  WordVector even[kChains], odd[kChains];

  HWY_INLINE void Begin(int32_t start) {
    const Words words;
    for (size_t chain = 0; chain < kChains; ++chain) {
      even[chain] = odd[chain] = hn::Set(words, chain == 0 ? start : 0);
    }
  }

  /// Adds the products of a group's plane with its two words of weights.
  HWY_INLINE void Add(const int32_t* plane, WordVector weights0, WordVector weights1) {
    const Words words;
#if HWY_TARGET == HWY_AVX3_DL
    const auto evenRows = InRegister(hn::Load(words, plane));
    const auto oddRows = InRegister(hn::Load(words, plane + kLanes));
    even[0] = AddByteProducts(even[0], evenRows, weights0);
    odd[0] = AddByteProducts(odd[0], oddRows, weights0);
    even[1] = AddByteProducts(even[1], evenRows, weights1);
    odd[1] = AddByteProducts(odd[1], oddRows, weights1);
#else
    WordVector& even13 = even[kChains - 1];
    WordVector& odd13 = odd[kChains - 1];
    even[0] = AddProducts(even[0], hn::Load(words, plane), weights0);
    odd[0] = AddProducts(odd[0], hn::Load(words, plane + kLanes), weights0);
    even13 = AddProducts(even13, hn::Load(words, plane + 2 * kLanes), weights1);
    odd13 = AddProducts(odd13, hn::Load(words, plane + 3 * kLanes), weights1);
#endif
  }

  /// The sums scaled down by `shift` bits, an even row below an odd one in each word.
  HWY_INLINE WordVector Scaled(int32_t shift) const {
    const Halves halves;
    const auto low = hn::ShiftRightSame(Whole(even), shift);
    const auto high = hn::ShiftLeft<16>(hn::ShiftRightSame(Whole(odd), shift));
    return hn::BitCast(Words(), hn::OddEven(hn::BitCast(halves, high), hn::BitCast(halves, low)));
  }

 private:
  static HWY_INLINE WordVector Whole(const WordVector (&chains)[kChains]) {
    if constexpr (kInBytes) return hn::Add(chains[0], hn::ShiftLeft<8>(chains[kChains - 1]));
    return kChains == 2 ? hn::Add(chains[0], chains[1]) : chains[0];
  }
};

/// The columns whose sums fill four words.
template <class Layout>
struct Neighbours {
  const FixedWeights::Entry* entries[Layout::kColumns];
  int32_t first;  ///< column

  /// Whether all of them take the same number of groups, each of them once.
  bool Alike() const {
    bool alike = true;
    for (const FixedWeights::Entry* entry : entries) {
      alike &= entry->groups == entries[0]->groups && entry->extraCount == 0;
    }
    return alike;
  }
};

/// The sums of neighbouring columns, scaled. `kAlike` is for those that are.
template <bool kAlike, class Layout>
HWY_INLINE void SumColumns(const FixedWeights& columns, int32_t fraction,
                           const Neighbours<Layout>& neighbours, const TransposedRows<Layout>& rows,
                           WordVector (&rowPairs)[4]) {
  using Rows = TransposedRows<Layout>;
  constexpr size_t kSums = Layout::kSums;
  const Words words;
  RowSums sums[4];
  const int32_t* from[4];
  const int32_t* weights[Layout::kColumns];
  KELTO_UNROLL for (size_t c = 0; c < Layout::kColumns; ++c) {
    const FixedWeights::Entry& entry = *neighbours.entries[c];
    weights[c] = columns.Words(entry);
    KELTO_UNROLL for (size_t i = 0; i < kSums; ++i) {
      const size_t plane = Layout::Plane(neighbours.first + static_cast<int32_t>(c), i);
      from[c * kSums + i] = rows.At(entry.firstGroup) + plane * Rows::kPlaneWords;
      sums[c * kSums + i].Begin((1 << (entry.shift - fraction - 1)) - (128 << entry.shift));
    }
  }
  if constexpr (kAlike) {
    // Side by side: there are more sums than a product takes cycles.
    const int32_t groups = neighbours.entries[0]->groups;
    for (ptrdiff_t group = 0; group < groups; ++group) {
      KELTO_UNROLL for (size_t c = 0; c < Layout::kColumns; ++c) {
        const auto weights0 = hn::Set(words, weights[c][2 * group]);
        const auto weights1 = hn::Set(words, weights[c][2 * group + 1]);
        KELTO_UNROLL for (size_t i = 0; i < kSums; ++i) {
          const size_t sum = c * kSums + i;
          sums[sum].Add(from[sum], weights0, weights1);
          from[sum] += Rows::kGroupWords;
        }
      }
    }
  } else {
    for (size_t sum = 0; sum < 4; ++sum) {
      const FixedWeights::Entry& entry = *neighbours.entries[sum / kSums];
      const auto place = [&](int32_t group) {
        return from[sum] + static_cast<size_t>(group) * Rows::kGroupWords;
      };
      for (int32_t group = 0; group < entry.groups; ++group) {
        const int32_t* const two = weights[sum / kSums] + ptrdiff_t{2} * group;
        sums[sum].Add(place(group), hn::Set(words, two[0]), hn::Set(words, two[1]));
      }
      for (const FixedWeights::Extra& extra : columns.Extras(entry)) {
        sums[sum].Add(place(extra.group), hn::Set(words, extra.words[0]),
                      hn::Set(words, extra.words[1]));
      }
    }
  }
  KELTO_UNROLL for (size_t sum = 0; sum < 4; ++sum) {
    rowPairs[sum] = sums[sum].Scaled(neighbours.entries[sum / kSums]->shift - fraction);
  }
}

/// Those few that are not alike.
template <class Layout>
HWY_NOINLINE void SumUnlikeColumns(const FixedWeights& columns, int32_t fraction,
                                   const Neighbours<Layout>& neighbours,
                                   const TransposedRows<Layout>& rows, int32_t* rowPairs) {
  WordVector v[4];
  SumColumns<false>(columns, fraction, neighbours, rows, v);
  for (size_t i = 0; i < 4; ++i) hn::StoreU(v[i], Words(), rowPairs + i * kLanes);
}

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
