// The first pass of the deep picture in vectors, down the columns. Compiled for each target by the
// source that includes it behind Highway's foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <vector>

#include "deep/plan.h"
#include "deep/strip-inl.h"

// Once for each target.
#if defined(KELTO_DEEP_DOWN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_DEEP_DOWN_INL_H_
#undef KELTO_DEEP_DOWN_INL_H_
#else
#define KELTO_DEEP_DOWN_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

/// Destination rows on their way through the first pass: a row's place is taken again once it is
/// over.
class SumRows {
 public:
  explicit SumRows(size_t count) : count_(count) {}

  /// Starts rows of `floats` floats.
  void Begin(size_t floats) {
    // An odd number of cache lines, so that rows do not fall into the same few sets.
    stride_ = ((floats + kLine - 1) / kLine | 1) * kLine;
    if (sums_.count() < stride_ * count_) sums_ = FloatBuffer(stride_ * count_);
  }

  float* Row(size_t row) const { return sums_.get() + stride_ * (row % count_); }

 private:
  static constexpr size_t kLine = 16;
  size_t stride_ = 0, count_;
  FloatBuffer sums_;
};

/// What a block adds to one destination row or to two, the second of which begins and ends no
/// earlier than the first and begins before that ends.
struct BlockSum {
  struct Part {
    int32_t first = 0, count = 0;  ///< rows of the picture
    const float* weights = nullptr;
    float* sums = nullptr;
    bool add = false;  ///< to what earlier blocks summed
  };
  Part upper, lower;
  bool two = false;
};

/// Rows `rows` of a weight table's entry.
BlockSum::Part PartOf(const WeightTable::Entry& entry, const float* weights, Range rows,
                      float* sums) {
  BlockSum::Part part;
  part.first = std::max(entry.first, rows.first);
  part.count = std::max(std::min(entry.first + entry.count, rows.end) - part.first, 0);
  part.weights = weights + entry.offset + (part.first - entry.first);
  part.sums = sums;
  part.add = part.first > entry.first;
  return part;
}

/// Adds the products of `count` of a strip's rows to one destination row's sums.
HWY_INLINE const float* AddRows(const float* from, const float* weights, int32_t count,
                                DeepVector (&sums)[kSumVectors]) {
  const Floats floats;
  for (int32_t tap = 0; tap < count; ++tap, from += kStripFloats) {
    const auto weight = hn::Set(floats, weights[tap]);
    for (size_t i = 0; i < kSumVectors; ++i) {
      sums[i] = hn::MulAdd(weight, hn::Load(floats, from + i * kLanes), sums[i]);
    }
  }
  return from;
}

/// Keeps what is used twice in a register: compilers would load it twice.
HWY_INLINE DeepVector InRegister(DeepVector v) {
#if HWY_COMPILER_GCC && HWY_ARCH_X86 && HWY_MAX_BYTES == 64
  asm("" : "+v"(v.raw));
#elif HWY_COMPILER_GCC && HWY_ARCH_X86
  asm("" : "+x"(v.raw));
#endif
  return v;
}

/// `zeros` come from memory since compilers that see them clear the sums' memory instead.
HWY_INLINE void StartSums(const float* zeros, DeepVector (&sums)[kSumVectors]) {
  for (size_t i = 0; i < kSumVectors; ++i) sums[i] = hn::Load(Floats(), zeros + i * kLanes);
}

HWY_INLINE void StoreSums(const DeepVector (&sums)[kSumVectors], bool add, float* to) {
  const Floats floats;
  if (add) {
    for (size_t i = 0; i < kSumVectors; ++i) {
      hn::Store(hn::Add(sums[i], hn::Load(floats, to + i * kLanes)), floats, to + i * kLanes);
    }
  } else {
    for (size_t i = 0; i < kSumVectors; ++i) hn::Store(sums[i], floats, to + i * kLanes);
  }
}

/// Sums `floats` floats of a strip, which lies `at` floats from the rows' beginning.
HWY_NOINLINE void SumOneRow(const DeepStrip& strip, const BlockSum::Part& part, const float* zeros,
                            size_t at, size_t floats, RowsAhead& ahead, size_t lines) {
  for (size_t i = 0; i < floats; i += kSumFloats) {
    ahead.Fetch(lines);
    DeepVector sums[kSumVectors];
    StartSums(zeros, sums);
    AddRows(strip.Row(part.first) + i, part.weights, part.count, sums);
    StoreSums(sums, part.add, part.sums + at + i);
  }
}

HWY_NOINLINE void SumTwoRows(const DeepStrip& strip, const BlockSum& block, const float* zeros,
                             size_t at, size_t floats, RowsAhead& ahead, size_t lines) {
  const Floats tag;
  const BlockSum::Part &upper = block.upper, &lower = block.lower;
  const int32_t before = lower.first - upper.first, common = upper.count - before;
  const int32_t after = lower.count - common;
  for (size_t i = 0; i < floats; i += kSumFloats) {
    ahead.Fetch(lines);
    DeepVector sums[kSumVectors], sumsBelow[kSumVectors];
    StartSums(zeros, sums);
    StartSums(zeros, sumsBelow);
    const float* from = AddRows(strip.Row(upper.first) + i, upper.weights, before, sums);
    const float* const weights = upper.weights + before;
    for (int32_t tap = 0; tap < common; ++tap, from += kStripFloats) {
      const auto weight = hn::Set(tag, weights[tap]);
      const auto weightBelow = hn::Set(tag, lower.weights[tap]);
      for (size_t j = 0; j < kSumVectors; ++j) {
        const auto samples = InRegister(hn::Load(tag, from + j * kLanes));
        sums[j] = hn::MulAdd(weight, samples, sums[j]);
        sumsBelow[j] = hn::MulAdd(weightBelow, samples, sumsBelow[j]);
      }
    }
    AddRows(from, lower.weights + common, after, sumsBelow);
    StoreSums(sums, upper.add, upper.sums + at + i);
    StoreSums(sumsBelow, lower.add, lower.sums + at + i);
  }
}

/// Whether two parts can be summed at a time. Mirroring at a picture's ends makes others.
bool OverlapInOrder(const BlockSum::Part& upper, const BlockSum::Part& lower) {
  return lower.count > 0 && upper.first <= lower.first &&
         lower.first <= upper.first + upper.count &&
         upper.first + upper.count <= lower.first + lower.count;
}

/// The order in which destination rows begin and end. Mirroring at a picture's ends makes rows that
/// begin or end before the one above them does.
struct RowOrder {
  std::vector<int32_t> firsts;  ///< the first picture row that this row or a later one needs
  size_t most = 0;  ///< rows on their way at a time, those included that wait for others

  /// `together`: complete rows that are taken at a time.
  RowOrder(const WeightTable& table, size_t together) : firsts(table.entries.size()) {
    const std::vector<WeightTable::Entry>& entries = table.entries;
    int32_t first = INT32_MAX;
    for (size_t i = entries.size(); i-- > 0;) {
      first = std::min(first, entries[i].first);
      firsts[i] = first;
    }
    size_t over = 0, begun = 0;
    for (int32_t end = table.ImagePixels().first / kBlockRows * kBlockRows + kBlockRows;
         over < entries.size(); end += kBlockRows) {
      while (begun < entries.size() && firsts[begun] < end) ++begun;
      most = std::max(most, begun - over);
      while (over < entries.size() && entries[over].first + entries[over].count <= end) ++over;
    }
    most += together;
  }
};

/// The first pass.
class DownPass {
 public:
  /// `weights` are the row weights, normalised.
  DownPass(const DeepPlan& plan, const std::vector<float>& weights, const RowOrder& order)
      : entries_(plan.rowWeights.entries),
        used_(plan.rowWeights.ImagePixels()),
        weights_(weights),
        firsts_(order.firsts),
        picture_(plan.picture),
        strip_(plan),
        rows_(order.most),
        zeros_(kSumFloats) {
    std::fill_n(zeros_.get(), kSumFloats, 0.0f);
  }

  /// Starts with `pixels` columns of the picture from `base` on.
  void Begin(int32_t base, int32_t pixels) {
    floats_ = (4 * static_cast<size_t>(pixels) + kSumFloats - 1) / kSumFloats * kSumFloats;
    block_ = used_.first / kBlockRows;
    complete_ = 0;
    base_ = base;
    pixels_ = pixels;
    strip_.Begin(base);
    rows_.Begin(floats_);
  }

  float* Row(size_t row) const { return rows_.Row(row); }
  RowsAhead& Ahead() { return ahead_; }

  /// Takes blocks until row `end - 1` and those above it are complete; those before `over` no
  /// longer have to be kept.
  void Advance(size_t over, size_t end) {
    for (; complete_ < end; ++block_) {
      const Range rows = BlockRange(block_);
      Sum(over, rows);
      while (complete_ < entries_.size() && EndOf(complete_) <= rows.end) ++complete_;
    }
  }

 private:
  int32_t EndOf(size_t row) const { return entries_[row].first + entries_[row].count; }

  Range BlockRange(int32_t block) const {
    return {std::max(block * kBlockRows, used_.first),
            std::min((block + 1) * kBlockRows, used_.end)};
  }

  void Sum(size_t over, Range rows) {
    sums_.clear();
    for (size_t i = std::max(over, complete_); i < entries_.size() && firsts_[i] < rows.end; ++i) {
      BlockSum sum;
      sum.upper = PartOf(entries_[i], weights_.data(), rows, Row(i));
      if (sum.upper.count == 0) continue;
      if (i + 1 < entries_.size()) {
        sum.lower = PartOf(entries_[i + 1], weights_.data(), rows, Row(i + 1));
        sum.two = OverlapInOrder(sum.upper, sum.lower);
        if (sum.two) ++i;
      }
      sums_.push_back(sum);
    }
    // Two thirds of the next block while this one is summed, the rest during the second pass.
    if (rows.end < used_.end) {
      ahead_.Begin(picture_, base_, pixels_, BlockRange(block_ + 1));
    }
    const size_t steps = std::max<size_t>(sums_.size() * floats_ / kSumFloats, 1);
    const size_t lines = (ahead_.Lines() * 2 / 3 + steps - 1) / steps;
    for (size_t at = 0; at < floats_; at += kStripFloats) {
      strip_.Read(at / 4, rows);
      const size_t floats = std::min(kStripFloats, floats_ - at);
      for (const BlockSum& sum : sums_) {
        if (sum.two) {
          SumTwoRows(strip_, sum, zeros_.get(), at, floats, ahead_, lines);
        } else {
          SumOneRow(strip_, sum.upper, zeros_.get(), at, floats, ahead_, lines);
        }
      }
    }
  }

  const std::vector<WeightTable::Entry>& entries_;
  Range used_;
  const std::vector<float>& weights_;
  const std::vector<int32_t>& firsts_;
  size_t floats_ = 0;
  int32_t block_ = 0;
  const DeepSource& picture_;
  int32_t base_ = 0, pixels_ = 0;
  DeepStrip strip_;
  RowsAhead ahead_;
  SumRows rows_;
  FloatBuffer zeros_;
  size_t complete_ = 0;  ///< rows above this one are complete
  std::vector<BlockSum> sums_;
};

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
