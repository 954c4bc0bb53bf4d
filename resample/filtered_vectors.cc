// The filtered path in fixed point. Source rows are taken in blocks, two for each 32-bit lane:
// lane i holds rows 2i and 2i + 1 of the block.
//
// First pass: four pixels of each row are loaded at a time and transposed so that a lane holds the
// pixels of one row (transposed_rows-inl.h). Products need no shuffling then: a column's weights
// are the same in all lanes. Bytes are spread to 16 bits and multiplied and added in pairs, or,
// where the target can, multiplied four at a time as they are, by weights cut into bytes: half as
// much is written and read again. The sums are the same integers. They come out with a row in each
// lane and are transposed back into rows, two to a word, for the second pass to pair again. Of a
// 4:2:2 destination's pixels only the luma and the chroma sample of the column's parity are summed.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resample/filtered_vectors.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "resample/column_sums-inl.h"
#include "resample/filtered_fixed.h"
#include "resample/filtered_store.h"
#include "resample/transposed_rows-inl.h"
#include "resample/vnni-inl.h"
#include "targets/vectors.h"

KELTO_BEFORE_VNNI_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

int64_t DrawFixed(const FilteredPlan& plan, const FixedFilters&) {
  DrawFilteredScalar(plan);
  return HWY_TARGET;
}

#else
namespace {

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

/// Vectors of a tile of the second pass: one with few rows is wide, for more sums than a product
/// takes cycles; the rows of one with many are to fit the first-level cache.
constexpr size_t kMostTileVectors = kLanes == 16 ? 16 : 8;
constexpr size_t kTileVectors = 8;
constexpr int32_t kMostRowPairsOfWideTile = 12;

/// The first pass's results, two rows to a word. A row's place is taken again when it is over.
class PairRows {
 public:
  PairRows(size_t rowWords, int32_t window)
      // An odd number of cache lines, so that rows do not fall into the same few sets.
      : stride_(((rowWords + kMostTileVectors * kLanes + kLine - 1) / kLine | 1) * kLine),
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

/// First pass of one block of rows into pair rows from `to` on.
template <class Layout>
HWY_NOINLINE void FilterAlongRows(const FilteredPlan& plan, const FixedWeights& columns,
                                  int32_t fraction, TransposedRows<Layout>& rows, int32_t* to,
                                  size_t stride) {
  const std::vector<FixedWeights::Entry>& entries = columns.entries;
  for (size_t i = 0; i < entries.size(); i += Layout::kColumns) {
    Neighbours<Layout> neighbours;
    neighbours.first = plan.columns.first + static_cast<int32_t>(i);
    for (size_t c = 0; c < Layout::kColumns; ++c) {
      // The last column of an odd number is summed twice; the second goes to where nothing is read.
      neighbours.entries[c] = &entries[std::min(i + c, entries.size() - 1)];
    }
    rows.Hold(neighbours.entries);
    WordVector v[4];
    if (neighbours.Alike()) {
      SumColumns<true>(columns, fraction, neighbours, rows, v);
    } else {
      HWY_ALIGN int32_t unlike[4 * kLanes];
      SumUnlikeColumns(columns, fraction, neighbours, rows, unlike);
      for (size_t j = 0; j < 4; ++j) v[j] = hn::Load(Words(), unlike + j * kLanes);
    }
    TurnBlocks(v);
    for (size_t j = 0; j < 4; ++j) {
      StoreBlocks(v[j], to + j * stride + i * Layout::kSums, stride);
    }
  }
}

/// Second pass of a tile of one destination row: the bytes of its words' sums.
template <size_t kVectors>
HWY_NOINLINE void FilterDownTile(const FixedFilters& filters, const FixedWeights::Entry& entry,
                                 const PairRows& pairs, size_t firstWord, uint8_t* bytes) {
  const Words words;
  const int32_t shift = entry.shift + filters.fraction;
  WordVector sums[kVectors];
  for (WordVector& sum : sums) sum = hn::Set(words, 128 << shift);
  const int32_t* weights = filters.rows.Words(entry);
  int32_t place = entry.firstGroup % pairs.Count();
  const int32_t* from = pairs.Place(place) + firstWord;
  for (int32_t group = 0; group < entry.groups; ++group) {
    const auto weight = hn::Set(words, weights[group]);
    for (size_t i = 0; i < kVectors; ++i) {
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
    for (size_t i = 0; i < kVectors; ++i) {
      sums[i] = AddProducts(sums[i], hn::Load(words, at + i * kLanes), weight);
    }
  }
  // To nearest, ties to even.
  const auto belowHalf = hn::Set(words, (1 << (shift - 1)) - 1);
  const auto one = hn::Set(words, 1);
  const hn::Rebind<uint8_t, Words> toBytes;
  for (size_t i = 0; i < kVectors; ++i) {
    const auto odd = hn::And(hn::ShiftRightSame(sums[i], shift), one);
    const auto levels = hn::ShiftRightSame(hn::Add(hn::Add(sums[i], belowHalf), odd), shift);
    hn::StoreU(hn::DemoteTo(toBytes, levels), toBytes, bytes + i * kLanes);
  }
}

/// Second pass of rows [first, end), tile by tile, so that the pair rows of one are read from
/// memory near by for all rows.
template <size_t kVectors>
void FilterDown(const FilteredPlan& plan, const FixedFilters& filters, const PairRows& pairs,
                size_t rowWords, size_t first, size_t end) {
  constexpr size_t kTileWords = kVectors * kLanes;
  for (size_t word = 0; word < rowWords; word += kTileWords) {
    const size_t count = std::min(kTileWords, rowWords - word);
    for (size_t i = first; i < end; ++i) {
      HWY_ALIGN uint8_t bytes[kTileWords];
      FilterDownTile<kVectors>(filters, filters.rows.entries[i], pairs, word, bytes);
      StoreFiltered(plan, i, word, count, bytes);
    }
  }
}

template <class Layout>
void Draw(const FilteredPlan& plan, const FixedFilters& filters) {
  std::optional<FixedWeights> bytes;
  if constexpr (kInBytes) bytes = InBytes(filters.columns);
  const FixedWeights& columns = bytes ? *bytes : filters.columns;
  const size_t rowWords = columns.entries.size() * Layout::kSums;
  const std::vector<FixedWeights::Entry>& entries = filters.rows.entries;
  TransposedRows<Layout> transposed(plan, columns);
  const PairRows pairs(rowWords, filters.rows.window);
  const int32_t firstRow = filters.rows.base;
  const int32_t lastRow = plan.rowWeights.ImagePixels().end - 1;
  int32_t made = 0;
  size_t next = 0;
  while (next < entries.size()) {
    // Of this block and of the next.
    const uint8_t* rows[2 * kBlockRows];
    for (size_t i = 0; i < 2 * kBlockRows; ++i) {
      const int64_t row = firstRow + int64_t{2} * made + static_cast<int64_t>(i);
      rows[i] = plan.source.pixels +
                static_cast<ptrdiff_t>(std::min<int64_t>(row, lastRow)) * plan.source.rowBytes;
    }
    transposed.Begin(rows, rows + kBlockRows);
    FilterAlongRows<Layout>(plan, columns, filters.fraction, transposed, pairs.Place(made),
                            pairs.Stride());
    made += static_cast<int32_t>(kLanes);

    size_t end = next;
    while (end < entries.size() && entries[end].firstGroup + entries[end].groups <= made) ++end;
    if (filters.rows.window <= kMostRowPairsOfWideTile) {
      FilterDown<kMostTileVectors>(plan, filters, pairs, rowWords, next, end);
    } else {
      FilterDown<kTileVectors>(plan, filters, pairs, rowWords, next, end);
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
