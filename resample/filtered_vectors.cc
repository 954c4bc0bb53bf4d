// The filtered path in fixed point. Source rows are taken in blocks, two for each 32-bit lane:
// lane i holds rows 2i and 2i + 1 of the block.
//
// First pass: four pixels of each row are loaded at a time and transposed so that a vector holds
// one byte of one pixel for every row (transposed_rows-inl.h). Products need no shuffling then: a
// column's weights are the same in all lanes. Bytes are spread to 16 bits and multiplied and added
// in pairs. Sums come out with a row in each lane and are transposed back into rows, two to a word,
// for the second pass to pair again. Of a 4:2:2 destination's pixels only the luma and the chroma
// sample of the column's parity are summed.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resample/filtered_vectors.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <algorithm>
#include <vector>

#include "resample/filtered_fixed.h"
#include "resample/filtered_store.h"
#include "resample/transposed_rows-inl.h"
#include "targets/vectors.h"

HWY_BEFORE_NAMESPACE();
#if HWY_TARGET == HWY_AVX3_DL && defined(__clang__)
HWY_POP_ATTRIBUTES
HWY_PUSH_ATTRIBUTES(HWY_TARGET_STR ",avx512vnni")
#elif HWY_TARGET == HWY_AVX3_DL
#pragma GCC target("avx512vnni")
#endif
namespace kelto {
namespace HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

int64_t DrawFixed(const FilteredPlan& plan, const FixedFilters&) {
  DrawFilteredScalar(plan);
  return HWY_TARGET;
}

#else
namespace {

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

/// Writes a vector's blocks to rows `stride` words apart.
HWY_INLINE void StoreBlocks(WordVector v, int32_t* to, size_t stride) {
  const FourWords four;
#if HWY_MAX_BYTES == 64
  const hn::Full256<int32_t> half;
  const auto low = hn::LowerHalf(half, v), high = hn::UpperHalf(half, v);
  hn::StoreU(hn::LowerHalf(four, low), four, to);
  hn::StoreU(hn::UpperHalf(four, low), four, to + 4 * stride);
  hn::StoreU(hn::LowerHalf(four, high), four, to + 8 * stride);
  hn::StoreU(hn::UpperHalf(four, high), four, to + 12 * stride);
#elif HWY_MAX_BYTES == 32
  hn::StoreU(hn::LowerHalf(four, v), four, to);
  hn::StoreU(hn::UpperHalf(four, v), four, to + 4 * stride);
#else
  hn::StoreU(v, four, to);
  (void)stride;
#endif
}

/// The first pass's results, two rows to a word. A row's place is taken again when it is over.
class PairRows {
 public:
  static constexpr size_t kTileVectors = 8;
  static constexpr size_t kTileWords = kTileVectors * kLanes;

  PairRows(size_t rowWords, int32_t window)
      // An odd number of cache lines, so that rows do not fall into the same few sets.
      : stride_(((rowWords + kTileWords + kLine - 1) / kLine | 1) * kLine),
        count_((window / static_cast<int32_t>(kLanes) + 2) * static_cast<int32_t>(kLanes)),
        words_(stride_ * static_cast<size_t>(count_)) {}

  size_t Stride() const { return stride_; }  ///< words from a pair of rows to the next
  int32_t Count() const { return count_; }   ///< pairs held, whole blocks of them
  int32_t* Place(int32_t pair) const {
    return words_.get() + stride_ * static_cast<size_t>(pair % count_);
  }

 private:
  static constexpr size_t kLine = 16;
  size_t stride_;
  int32_t count_;
  Buffer words_;
};

/// Sums of a column so far. Pixels 0 and 2 and pixels 1 and 3 are summed apart where registers
/// last: a sum waits for the product before it.
template <class Layout>
struct ColumnSums {
  static constexpr size_t kChains = Layout::kSums == 2 ? 2 : 1;
  WordVector even[Layout::kSums][kChains], odd[Layout::kSums][kChains];

  /// Adds the products of a group's plane at `at`.
  HWY_INLINE void Add(size_t sum, const int32_t* at, WordVector weights02, WordVector weights13) {
    const Words words;
    WordVector& even13 = even[sum][kChains - 1];
    WordVector& odd13 = odd[sum][kChains - 1];
    even[sum][0] = AddProducts(even[sum][0], hn::Load(words, at), weights02);
    odd[sum][0] = AddProducts(odd[sum][0], hn::Load(words, at + kLanes), weights02);
    even13 = AddProducts(even13, hn::Load(words, at + 2 * kLanes), weights13);
    odd13 = AddProducts(odd13, hn::Load(words, at + 3 * kLanes), weights13);
  }
};

/// One column's sums over its groups, scaled and transposed into words of two rows.
template <class Layout>
HWY_INLINE void SumColumn(const FixedFilters& filters, const FixedWeights::Entry& entry,
                          const int32_t* groups, int32_t column, WordVector* rowPairs) {
  const Words words;
  const int32_t shift = entry.shift - filters.fraction;
  const int32_t start = (1 << (shift - 1)) - (128 << entry.shift);
  ColumnSums<Layout> sums;
  const int32_t* from[Layout::kSums];
  for (size_t sum = 0; sum < Layout::kSums; ++sum) {
    for (size_t chain = 0; chain < sums.kChains; ++chain) {
      sums.even[sum][chain] = sums.odd[sum][chain] = hn::Set(words, chain == 0 ? start : 0);
    }
    from[sum] = groups + Layout::Plane(column, sum) * 4 * kLanes;
  }
  const int32_t* weights = filters.columns.Words(entry);
  for (int32_t group = 0; group < entry.groups; ++group, weights += 2) {
    const auto weights02 = hn::Set(words, weights[0]);
    const auto weights13 = hn::Set(words, weights[1]);
    for (size_t sum = 0; sum < Layout::kSums; ++sum) {
      sums.Add(sum, from[sum], weights02, weights13);
      from[sum] += TransposedRows<Layout>::kGroupWords;
    }
  }
  for (const FixedWeights::Extra& extra : filters.columns.Extras(entry)) {
    const int32_t* const at =
        groups + static_cast<size_t>(extra.group) * TransposedRows<Layout>::kGroupWords;
    for (size_t sum = 0; sum < Layout::kSums; ++sum) {
      sums.Add(sum, at + Layout::Plane(column, sum) * 4 * kLanes, hn::Set(words, extra.words[0]),
               hn::Set(words, extra.words[1]));
    }
  }
  const Halves halves;
  for (size_t sum = 0; sum < Layout::kSums; ++sum) {
    auto low = sums.even[sum][0], high = sums.odd[sum][0];
    if constexpr (sums.kChains == 2) {
      low = hn::Add(low, sums.even[sum][1]);
      high = hn::Add(high, sums.odd[sum][1]);
    }
    low = hn::ShiftRightSame(low, shift);
    high = hn::ShiftLeft<16>(hn::ShiftRightSame(high, shift));
    rowPairs[sum] =
        hn::BitCast(words, hn::OddEven(hn::BitCast(halves, high), hn::BitCast(halves, low)));
  }
}

/// First pass of one block of rows into pair rows from `to` on.
template <class Layout>
HWY_NOINLINE void FilterAlongRows(const FilteredPlan& plan, const FixedFilters& filters,
                                  TransposedRows<Layout>& rows, int32_t* to, size_t stride) {
  const std::vector<FixedWeights::Entry>& entries = filters.columns.entries;
  for (size_t i = 0; i < entries.size(); i += Layout::kColumns) {
    const int32_t column = plan.columns.first + static_cast<int32_t>(i);
    WordVector v[4];
    SumColumn<Layout>(filters, entries[i], rows.Groups(entries[i]), column, v);
    if constexpr (Layout::kColumns == 2) {
      // The last column of an odd number is summed twice; the second goes to where nothing is read.
      const FixedWeights::Entry& next = entries[std::min(i + 1, entries.size() - 1)];
      SumColumn<Layout>(filters, next, rows.Groups(next), column + 1, v + 2);
    }
    TurnBlocks(v);
    for (size_t j = 0; j < 4; ++j) {
      StoreBlocks(v[j], to + j * stride + i * Layout::kSums, stride);
    }
  }
}

/// Second pass of a tile of one destination row: the bytes of its words' sums.
HWY_NOINLINE void FilterDownTile(const FixedFilters& filters, const FixedWeights::Entry& entry,
                                 const PairRows& pairs, size_t firstWord, uint8_t* bytes) {
  const Words words;
  const int32_t shift = entry.shift + filters.fraction;
  WordVector sums[PairRows::kTileVectors];
  for (WordVector& sum : sums) sum = hn::Set(words, 128 << shift);
  const int32_t* weights = filters.rows.Words(entry);
  int32_t place = entry.firstGroup % pairs.Count();
  const int32_t* from = pairs.Place(place) + firstWord;
  for (int32_t group = 0; group < entry.groups; ++group) {
    const auto weight = hn::Set(words, weights[group]);
    for (size_t i = 0; i < PairRows::kTileVectors; ++i) {
      sums[i] = AddProducts(sums[i], hn::Load(words, from + i * kLanes), weight);
    }
    from += pairs.Stride();
    if (++place == pairs.Count()) {
      place = 0;
      from = pairs.Place(0) + firstWord;
    }
  }
  for (const FixedWeights::Extra& extra : filters.rows.Extras(entry)) {
    const auto weight = hn::Set(words, extra.words[0]);
    const int32_t* const at = pairs.Place(entry.firstGroup + extra.group) + firstWord;
    for (size_t i = 0; i < PairRows::kTileVectors; ++i) {
      sums[i] = AddProducts(sums[i], hn::Load(words, at + i * kLanes), weight);
    }
  }
  // To nearest, ties to even.
  const auto belowHalf = hn::Set(words, (1 << (shift - 1)) - 1);
  const auto one = hn::Set(words, 1);
  const hn::Rebind<uint8_t, Words> toBytes;
  for (size_t i = 0; i < PairRows::kTileVectors; ++i) {
    const auto odd = hn::And(hn::ShiftRightSame(sums[i], shift), one);
    const auto levels = hn::ShiftRightSame(hn::Add(hn::Add(sums[i], belowHalf), odd), shift);
    hn::StoreU(hn::DemoteTo(toBytes, levels), toBytes, bytes + i * kLanes);
  }
}

template <class Layout>
void Draw(const FilteredPlan& plan, const FixedFilters& filters) {
  const size_t rowWords = filters.columns.entries.size() * Layout::kSums;
  const std::vector<FixedWeights::Entry>& entries = filters.rows.entries;
  TransposedRows<Layout> transposed(plan, filters.columns);
  const PairRows pairs(rowWords, filters.rows.window);
  const int32_t firstRow = filters.rows.base;
  const int32_t lastRow = plan.rowWeights.ImagePixels().end - 1;
  int32_t made = 0;
  size_t next = 0;
  while (next < entries.size()) {
    const uint8_t* rows[kBlockRows];
    for (size_t i = 0; i < kBlockRows; ++i) {
      const int64_t row = firstRow + int64_t{2} * made + static_cast<int64_t>(i);
      rows[i] = plan.source.pixels +
                static_cast<ptrdiff_t>(std::min<int64_t>(row, lastRow)) * plan.source.rowBytes;
    }
    transposed.Begin(rows);
    FilterAlongRows<Layout>(plan, filters, transposed, pairs.Place(made), pairs.Stride());
    made += static_cast<int32_t>(kLanes);

    size_t end = next;
    while (end < entries.size() && entries[end].firstGroup + entries[end].groups <= made) ++end;
    // Tile by tile, so that the pair rows of one are read from memory near by for all rows.
    for (size_t word = 0; word < rowWords && next < end; word += PairRows::kTileWords) {
      const size_t count = std::min(PairRows::kTileWords, rowWords - word);
      for (size_t i = next; i < end; ++i) {
        HWY_ALIGN uint8_t bytes[PairRows::kTileWords];
        FilterDownTile(filters, entries[i], pairs, word, bytes);
        StoreFiltered(plan, i, word, count, bytes);
      }
    }
    next = end;
  }
}

}  // namespace

int64_t DrawFixed(const FilteredPlan& plan, const FixedFilters& filters) {
  if (plan.canvas.format == PixelFormat::kPacked422) {
    Draw<Layout422>(plan, filters);
  } else {
    Draw<Layout4Byte>(plan, filters);
  }
  return HWY_TARGET;
}

#endif
}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto {

HWY_EXPORT(DrawFixed);

Target DrawFilteredFixed(const FilteredPlan& plan, const FixedFilters& filters) {
  return vectors::Named(HWY_DYNAMIC_DISPATCH(DrawFixed)(plan, filters));
}

}  // namespace kelto
#endif
