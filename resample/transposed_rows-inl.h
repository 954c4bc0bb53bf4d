// Blocks of source rows for the filtered path in vectors: pixels loaded and transposed so that a
// vector holds one byte of one pixel for every row. Compiled for each target by the source that
// includes it behind Highway's foreach_target.h.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>

#include "resample/filtered.h"
#include "resample/fixed_weights.h"

// Once for each target.
#if defined(KELTO_RESAMPLE_TRANSPOSED_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_RESAMPLE_TRANSPOSED_ROWS_INL_H_
#undef KELTO_RESAMPLE_TRANSPOSED_ROWS_INL_H_
#else
#define KELTO_RESAMPLE_TRANSPOSED_ROWS_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

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
/// Whether the target multiplies bytes as they are, four to a lane.
constexpr bool kInBytes = HWY_TARGET == HWY_AVX3_DL;
/// Vectors that a group's pixels take, of one byte each and a parity of rows.
constexpr size_t kVectorsOfGroup = kInBytes ? 1 : 2;

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

/// A block of source rows with a row in each lane, groups of pixels turned as they are needed and
/// forgotten from the left.
template <class Layout>
class TransposedRows {
 public:
  /// Words of a group's plane: its four pixels in a lane's bytes, even rows, then odd ones; or
  /// spread to 16 bits, pixels 0 and 2 of either, then 1 and 3.
  static constexpr size_t kPlaneWords = kVectorsOfGroup * 2 * kLanes;
  static constexpr size_t kGroupWords = Layout::kPlanes * kPlaneWords;

  TransposedRows(const FilteredPlan& plan, const FixedWeights& columns)
      : firstByte_(ptrdiff_t{4} * columns.base),
        wholeGroups_((plan.source.width - columns.base) / static_cast<int32_t>(kGroup)),
        total_(End(columns.entries)),
        capacity_(Capacity(columns.entries)),
        groups_(static_cast<size_t>(capacity_) * kGroupWords) {
    tailBytes_ = 4 * static_cast<size_t>((plan.source.width - columns.base) % kGroup);
    const std::array<int32_t, 4> bytes = Layout::SourceBytes(plan.chroma);
    for (size_t plane = 0; plane < 4; ++plane) {
      for (size_t pixel = 0; pixel < 4; ++pixel) {
        planeOrder_[4 * plane + pixel] = static_cast<uint8_t>(4 * pixel + bytes[plane]);
      }
    }
  }

  /// Starts another block, whose rows begin at the given places, and those of the block after it.
  void Begin(const uint8_t* const* rows, const uint8_t* const* next) {
    rows_ = rows;
    next_ = next;
    first_ = end_ = 0;
  }

  /// Has the groups of neighbouring columns. Those that neither they nor later ones need may go.
  void Hold(const FixedWeights::Entry* const (&columns)[Layout::kColumns]) {
    int32_t needed = 0;
    for (const FixedWeights::Entry* entry : columns) {
      needed = std::max(needed, entry->firstGroup + entry->groups);
    }
    if (needed <= end_) return;
    if (needed - first_ > capacity_) Forget(columns[0]->keep);
    Turn(std::min(needed, wholeGroups_));
    if (end_ < needed) TurnTail();
  }

  /// A group that is held, and those after it.
  const int32_t* At(int32_t group) const { return Place(group); }

 private:
  static constexpr int32_t kSlack = 24;  ///< groups; all of it fits the first-level cache
  static constexpr int32_t kAhead = 2;
  static constexpr int32_t kGroupsAhead = 64;

  static int32_t End(std::span<const FixedWeights::Entry> entries) {
    int32_t end = 0;
    for (const FixedWeights::Entry& entry : entries) {
      end = std::max(end, entry.firstGroup + entry.groups);
    }
    return end;
  }

  /// Twice what neighbouring columns need at a time, so that groups are moved only now and then.
  static int32_t Capacity(std::span<const FixedWeights::Entry> entries) {
    int32_t end = 0, window = 0;
    for (size_t i = 0; i < entries.size(); i += Layout::kColumns) {
      const auto neighbours = entries.subspan(i, std::min(Layout::kColumns, entries.size() - i));
      end = std::max(end, End(neighbours));
      window = std::max(window, end - neighbours[0].keep);
    }
    return window + std::max(window, kSlack);
  }

  int32_t* Place(int32_t group) const {
    return groups_.get() + static_cast<size_t>(group - first_) * kGroupWords;
  }

  void Forget(int32_t before) {
    const int32_t first = std::max(before, first_);
    end_ = std::max(end_, first);
    std::memmove(groups_.get(), groups_.get() + static_cast<size_t>(first - first_) * kGroupWords,
                 static_cast<size_t>(end_ - first) * kGroupWords * sizeof(int32_t));
    first_ = first;
  }

  /// Not inlined: known to the compiler, the rows' addresses end up in vectors, and each has to be
  /// fetched back.
  HWY_NOINLINE void Turn(int32_t until) {
    for (; end_ < until; ++end_) {
      const ptrdiff_t offset = firstByte_ + ptrdiff_t{16} * end_;
      // A quarter of the rows at each group, of which four fill a cache line: more at a time would
      // wait for each other.
      constexpr size_t kRowsAtATime = kBlockRows / 4;
      const int32_t ahead = end_ + kGroupsAhead;
      const uint8_t* const* const rows = (ahead < total_ ? rows_ : next_) + end_ % 4 * kRowsAtATime;
      const ptrdiff_t at = firstByte_ + ptrdiff_t{16} * (ahead < total_ ? ahead : ahead - total_);
      for (size_t row = 0; row < kRowsAtATime; ++row) hwy::Prefetch(rows[row] + at);
      TurnGroup(rows_, offset, Place(end_));
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
    TurnGroup(rows, 0, Place(end_));
    ++end_;
  }

  HWY_INLINE void TurnGroup(const uint8_t* const* rows, ptrdiff_t offset, int32_t* to) const {
    const Words words;
    const Bytes bytes;
    const auto order = hn::LoadDup128(bytes, planeOrder_);
    [[maybe_unused]] const auto everySecond = hn::Set(words, 0x00FF00FF);
    for (size_t parity = 0; parity < 2; ++parity) {
      WordVector v[4];
      for (size_t i = 0; i < 4; ++i) {
        const auto pixels = hn::BitCast(bytes, LoadBlocks(rows, 2 * i + parity, offset));
        v[i] = hn::BitCast(words, hn::TableLookupBytes(pixels, order));
      }
      TurnBlocks(v);
      for (size_t plane = 0; plane < Layout::kPlanes; ++plane) {
        int32_t* const at = to + plane * kPlaneWords + parity * kLanes;
        if constexpr (kInBytes) {
          hn::Store(v[plane], words, at);
        } else {
          hn::Store(hn::And(v[plane], everySecond), words, at);
          hn::Store(hn::And(hn::ShiftRight<8>(v[plane]), everySecond), words, at + 2 * kLanes);
        }
      }
    }
  }

  const uint8_t* const* rows_ = nullptr;
  const uint8_t* const* next_ = nullptr;
  ptrdiff_t firstByte_;
  int32_t wholeGroups_;  ///< that loads of four pixels may read
  size_t tailBytes_ = 0;
  int32_t total_;                ///< groups that any column needs
  int32_t capacity_;             ///< groups that there is room for
  int32_t first_ = 0, end_ = 0;  ///< groups held
  Buffer groups_;
  alignas(16) uint8_t planeOrder_[16] = {};
};

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
