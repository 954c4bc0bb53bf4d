// The filtered path in whole numbers. Source rows are taken in blocks, two for each 32-bit lane:
// lane i holds rows 2i and 2i + 1 of the block.
//
// First pass: four pixels of each row are loaded at a time and turned so that a vector holds one
// byte of one pixel for every row. Products need no shuffling then: a column's weights are the same
// in all lanes. Bytes are spread to 16 bits and multiplied and added in pairs. Sums come out with a
// row in each lane and are turned back into rows, two to a word, for the second pass to pair again.
// Of a 4:2:2 destination's pixels only the luma and the chroma sample of the column's parity are
// summed.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resample/filtered_vectors.cc"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "resample/filtered_fixed.h"
#include "resample/filtered_store.h"

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

void DrawFixed(const FilteredPlan& plan, const FixedFilters&) { DrawFilteredScalar(plan); }

#else
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<int32_t>;
using Halves = hn::Repartition<int16_t, Words>;
using Bytes = hn::Repartition<uint8_t, Words>;
using Doubles = hn::Repartition<int64_t, Words>;
using FourWords = hn::Full128<int32_t>;
using WordVector = hn::Vec<Words>;

constexpr size_t kLanes = HWY_MAX_BYTES / 4;  // fixed-size vectors only
constexpr size_t kBlockRows = 2 * kLanes;
constexpr size_t kGroup = 4;  ///< source pixels taken at a time

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

/// Turns the 4 x 4 words of each 128-bit block: word i of vector j becomes word j of vector i.
HWY_INLINE void TurnBlocks(WordVector (&v)[4]) {
  const Words words;
  const Doubles doubles;
  const auto ab = hn::BitCast(doubles, hn::InterleaveLower(words, v[0], v[1]));
  const auto cd = hn::BitCast(doubles, hn::InterleaveLower(words, v[2], v[3]));
  const auto abHigh = hn::BitCast(doubles, hn::InterleaveUpper(words, v[0], v[1]));
  const auto cdHigh = hn::BitCast(doubles, hn::InterleaveUpper(words, v[2], v[3]));
  v[0] = hn::BitCast(words, hn::InterleaveLower(doubles, ab, cd));
  v[1] = hn::BitCast(words, hn::InterleaveUpper(doubles, ab, cd));
  v[2] = hn::BitCast(words, hn::InterleaveLower(doubles, abHigh, cdHigh));
  v[3] = hn::BitCast(words, hn::InterleaveUpper(doubles, abHigh, cdHigh));
}

HWY_INLINE hn::Vec<FourWords> LoadPixels(const uint8_t* pixels) {
  return hn::BitCast(FourWords(), hn::LoadU(hn::Full128<uint8_t>(), pixels));
}

/// Four pixels of rows `first`, first + 8, ... from byte `offset` on, a row in each 128-bit block.
HWY_INLINE WordVector LoadBlocks(const uint8_t* const* rows, size_t first, ptrdiff_t offset) {
#if HWY_MAX_BYTES == 64
  const hn::Full256<int32_t> half;
  const auto low =
      hn::Combine(half, LoadPixels(rows[first + 8] + offset), LoadPixels(rows[first] + offset));
  const auto high = hn::Combine(half, LoadPixels(rows[first + 24] + offset),
                                LoadPixels(rows[first + 16] + offset));
  return hn::Combine(Words(), high, low);
#elif HWY_MAX_BYTES == 32
  return hn::Combine(Words(), LoadPixels(rows[first + 8] + offset),
                     LoadPixels(rows[first] + offset));
#else
  return LoadPixels(rows[first] + offset);
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

/// What a destination takes of each source pixel.
struct Layout422 {
  static constexpr size_t kPlanes = 3;   ///< bytes of a source pixel that are used at all
  static constexpr size_t kSums = 2;     ///< and for one column
  static constexpr size_t kColumns = 2;  ///< columns that fill four words
  /// The plane of a column's sum: luma, then the chroma of its parity.
  static size_t Plane(int32_t column, size_t sum) {
    return sum == 0 ? 0 : 1 + static_cast<size_t>(column % 2);
  }
  static std::array<int32_t, 4> SourceBytes(const ChromaBytes& chroma) {
    return {0, chroma.even, chroma.odd, 0};
  }
};

struct Layout4Byte {
  static constexpr size_t kPlanes = 4;
  static constexpr size_t kSums = 4;
  static constexpr size_t kColumns = 1;
  static size_t Plane(int32_t, size_t sum) { return sum; }
  static std::array<int32_t, 4> SourceBytes(const ChromaBytes&) { return {0, 1, 2, 3}; }
};

/// Words aligned for vectors, not cleared.
class Buffer {
 public:
  explicit Buffer(size_t words)
      : memory_(std::make_unique_for_overwrite<int32_t[]>(words + kAlignment / sizeof(int32_t))) {
    void* at = memory_.get();
    size_t space = words * sizeof(int32_t) + kAlignment;
    aligned_ = static_cast<int32_t*>(std::align(kAlignment, words * sizeof(int32_t), at, space));
  }
  int32_t* get() const { return aligned_; }

 private:
  static constexpr size_t kAlignment = 64;
  std::unique_ptr<int32_t[]> memory_;
  int32_t* aligned_;
};

/// A block of source rows with a row in each lane, groups of pixels spread to 16 bits as they are
/// needed and forgotten from the left.
template <class Layout>
class TurnedRows {
 public:
  /// Words of a group: for each plane pixels 0 and 2, then 1 and 3, even rows, then odd ones.
  static constexpr size_t kGroupWords = Layout::kPlanes * 4 * kLanes;

  TurnedRows(const FilteredPlan& plan, const FixedWeights& columns)
      : firstByte_(ptrdiff_t{4} * columns.base),
        wholeGroups_((plan.source.width - columns.base) / static_cast<int32_t>(kGroup)),
        capacity_(columns.window + std::max(columns.window, kSlack)),
        groups_(static_cast<size_t>(capacity_) * kGroupWords) {
    for (const FixedWeights::Entry& entry : columns.entries) {
      total_ = std::max(total_, entry.firstGroup + entry.groups);
    }
    tailBytes_ = 4 * static_cast<size_t>((plan.source.width - columns.base) % kGroup);
    const std::array<int32_t, 4> bytes = Layout::SourceBytes(plan.chroma);
    for (size_t plane = 0; plane < 4; ++plane) {
      for (size_t pixel = 0; pixel < 4; ++pixel) {
        planeOrder_[4 * plane + pixel] = static_cast<uint8_t>(4 * pixel + bytes[plane]);
      }
    }
  }

  /// Starts another block, whose rows begin at the given places.
  void Begin(const uint8_t* const* rows) {
    rows_ = rows;
    first_ = end_ = 0;
  }

  /// The groups from entry.firstGroup on. Those before entry.keep are forgotten.
  const int32_t* Groups(const FixedWeights::Entry& entry) {
    const int32_t needed = entry.firstGroup + entry.groups;
    if (needed > end_) {
      const int32_t end = std::min(needed + kAhead, total_);
      if (end - first_ > capacity_) Forget(entry.keep);
      const int32_t until = std::min(end, first_ + capacity_);
      Turn(std::min(until, wholeGroups_));
      if (end_ < until) TurnTail();
    }
    return groups_.get() + static_cast<size_t>(entry.firstGroup - first_) * kGroupWords;
  }

 private:
  static constexpr int32_t kSlack = 24;  ///< groups; all of it fits the first-level cache
  static constexpr int32_t kAhead = 4;
  static constexpr ptrdiff_t kPrefetchBytes = 1024;

  void Forget(int32_t before) {
    const int32_t first = std::max(before, first_);
    end_ = std::max(end_, first);
    std::memmove(groups_.get(), groups_.get() + static_cast<size_t>(first - first_) * kGroupWords,
                 static_cast<size_t>(end_ - first) * kGroupWords * sizeof(int32_t));
    first_ = first;
  }

  int32_t* At(int32_t group) const {
    return groups_.get() + static_cast<size_t>(group - first_) * kGroupWords;
  }

  /// Not inlined: known to the compiler, the rows' addresses end up in vectors, and each has to be
  /// fetched back.
  HWY_NOINLINE void Turn(int32_t until) {
    for (; end_ < until; ++end_) {
      const ptrdiff_t offset = firstByte_ + ptrdiff_t{16} * end_;
      if (end_ % 4 == 0) {
        for (size_t row = 0; row < kBlockRows; ++row) {
          hwy::Prefetch(rows_[row] + offset + kPrefetchBytes);
        }
      }
      TurnGroup(rows_, offset, At(end_));
    }
  }

  /// The image's last pixels when they are no whole group.
  void TurnTail() {
    alignas(16) uint8_t pixels[kBlockRows][16] = {};
    const uint8_t* rows[kBlockRows];
    for (size_t row = 0; row < kBlockRows; ++row) {
      std::memcpy(pixels[row], rows_[row] + firstByte_ + ptrdiff_t{16} * end_, tailBytes_);
      rows[row] = pixels[row];
    }
    TurnGroup(rows, 0, At(end_));
    ++end_;
  }

  HWY_INLINE void TurnGroup(const uint8_t* const* rows, ptrdiff_t offset, int32_t* to) const {
    const Words words;
    const Bytes bytes;
    const auto order = hn::LoadDup128(bytes, planeOrder_);
    const auto everySecond = hn::Set(words, 0x00FF00FF);
    for (size_t parity = 0; parity < 2; ++parity) {
      WordVector v[4];
      for (size_t i = 0; i < 4; ++i) {
        const auto pixels = hn::BitCast(bytes, LoadBlocks(rows, 2 * i + parity, offset));
        v[i] = hn::BitCast(words, hn::TableLookupBytes(pixels, order));
      }
      TurnBlocks(v);
      for (size_t plane = 0; plane < Layout::kPlanes; ++plane) {
        int32_t* const at = to + (4 * plane + parity) * kLanes;
        hn::Store(hn::And(v[plane], everySecond), words, at);
        hn::Store(hn::And(hn::ShiftRight<8>(v[plane]), everySecond), words, at + 2 * kLanes);
      }
    }
  }

  const uint8_t* const* rows_ = nullptr;
  ptrdiff_t firstByte_;
  int32_t wholeGroups_;  ///< that loads of four pixels may read
  size_t tailBytes_ = 0;
  int32_t total_ = 0;
  int32_t capacity_;
  int32_t first_ = 0, end_ = 0;  ///< groups held
  Buffer groups_;
  alignas(16) uint8_t planeOrder_[16] = {};
};

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

/// One column's sums over its groups, scaled and turned into words of two rows.
template <class Layout>
HWY_INLINE void SumColumn(const FixedFilters& filters, const FixedWeights::Entry& entry,
                          const int32_t* groups, int32_t column, WordVector* rowPairs) {
  const Words words;
  const int32_t shift = entry.shift - filters.fraction;
  const int32_t start = (1 << (shift - 1)) - (128 << entry.shift);
  // Pixels 0 and 2 and pixels 1 and 3 are summed apart where registers last: a sum waits for the
  // product before it.
  constexpr size_t kChains = Layout::kSums == 2 ? 2 : 1;
  WordVector even[Layout::kSums][kChains], odd[Layout::kSums][kChains];
  const int32_t* from[Layout::kSums];
  for (size_t sum = 0; sum < Layout::kSums; ++sum) {
    for (size_t chain = 0; chain < kChains; ++chain) {
      even[sum][chain] = odd[sum][chain] = hn::Set(words, chain == 0 ? start : 0);
    }
    from[sum] = groups + Layout::Plane(column, sum) * 4 * kLanes;
  }
  const int32_t* weights = filters.columns.Words(entry);
  for (int32_t group = 0; group < entry.groups; ++group, weights += 2) {
    const auto weights02 = hn::Set(words, weights[0]);
    const auto weights13 = hn::Set(words, weights[1]);
    for (size_t sum = 0; sum < Layout::kSums; ++sum) {
      const int32_t* const at = from[sum];
      WordVector& even13 = even[sum][kChains - 1];
      WordVector& odd13 = odd[sum][kChains - 1];
      even[sum][0] = AddProducts(even[sum][0], hn::Load(words, at), weights02);
      odd[sum][0] = AddProducts(odd[sum][0], hn::Load(words, at + kLanes), weights02);
      even13 = AddProducts(even13, hn::Load(words, at + 2 * kLanes), weights13);
      odd13 = AddProducts(odd13, hn::Load(words, at + 3 * kLanes), weights13);
      from[sum] += TurnedRows<Layout>::kGroupWords;
    }
  }
  const Halves halves;
  for (size_t sum = 0; sum < Layout::kSums; ++sum) {
    auto low = even[sum][0], high = odd[sum][0];
    if constexpr (kChains == 2) {
      low = hn::Add(low, even[sum][1]);
      high = hn::Add(high, odd[sum][1]);
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
                                  TurnedRows<Layout>& rows, int32_t* to, size_t stride) {
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
  TurnedRows<Layout> turned(plan, filters.columns);
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
    turned.Begin(rows);
    FilterAlongRows<Layout>(plan, filters, turned, pairs.Place(made), pairs.Stride());
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

void DrawFixed(const FilteredPlan& plan, const FixedFilters& filters) {
  if (plan.canvas.format == PixelFormat::Packed422) {
    Draw<Layout422>(plan, filters);
  } else {
    Draw<Layout4Byte>(plan, filters);
  }
}

#endif
}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto {

HWY_EXPORT(DrawFixed);

void DrawFilteredFixed(const FilteredPlan& plan, const FixedFilters& filters) {
  HWY_DYNAMIC_DISPATCH(DrawFixed)(plan, filters);
}

}  // namespace kelto
#endif
