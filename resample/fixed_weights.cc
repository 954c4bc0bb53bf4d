#include "resample/fixed_weights.h"

#include <algorithm>
#include <cmath>

namespace kelto {
namespace {

constexpr double kLargestWeight = 32766.0;  // one more after rounding
/// Bytes less 128 are no larger than this.
constexpr double kLargestSample = 128.0;
/// Of 32-bit sums; a little is left for the rounding of weights.
constexpr double kLargestSum = 0.98 * 2147483648.0;
/// The most by which exact and computed values may differ before each is rounded to a level.
constexpr double kMostError = 0.95;

/// What bounds the arithmetic with weights, normalised.
struct Bounds {
  double largest = 0.0;   ///< weight, in magnitude
  double absolute = 0.0;  ///< sum of the magnitudes of an entry's weights
  int32_t count = 0;      ///< of an entry's weights

  void Include(const Bounds& other) {
    largest = std::max(largest, other.largest);
    absolute = std::max(absolute, other.absolute);
    count = std::max(count, other.count);
  }
};

Bounds BoundsOf(const WeightTable::Entry& entry, const float* weights) {
  // Eight sums at a time, so that the compiler can use vectors.
  constexpr int32_t kLanes = 8;
  float sums[kLanes] = {}, peaks[kLanes] = {};
  int32_t tap = 0;
  for (; tap + kLanes <= entry.count; tap += kLanes) {
    for (int32_t i = 0; i < kLanes; ++i) {
      const float magnitude = std::abs(weights[tap + i]);
      sums[i] += magnitude;
      peaks[i] = std::max(peaks[i], magnitude);
    }
  }
  for (; tap < entry.count; ++tap) {
    const float magnitude = std::abs(weights[tap]);
    sums[0] += magnitude;
    peaks[0] = std::max(peaks[0], magnitude);
  }
  float sum = 0.0f, peak = 0.0f;
  for (int32_t i = 0; i < kLanes; ++i) {
    sum += sums[i];
    peak = std::max(peak, peaks[i]);
  }
  const double normaliser = std::abs(entry.normaliser);
  return {peak * normaliser, sum * normaliser, entry.count};
}

/// The largest shift at which weights fit 16 bits and sums of `largestValue` times them 32.
int32_t LargestShift(const Bounds& bounds, double largestValue) {
  const double fits = std::min(kLargestWeight / bounds.largest,
                               kLargestSum / (largestValue * (bounds.absolute + 1.0)));
  // Not a number where weights are none.
  return fits >= 2.0 ? std::min(std::ilogb(fits), 24) : 0;
}

/// What rows of such bounds add to the error of the first pass's results, in levels, when their
/// rounded weights differ from the exact ones by `difference` units in all; large where nothing
/// fits.
double RowError(const Bounds& rows, double difference, double largestBetween, int32_t fraction) {
  const int32_t shift = LargestShift(rows, std::ldexp(largestBetween, fraction));
  if (shift == 0) return 1e9;
  return std::ldexp(0.5, -fraction) * rows.absolute +
         largestBetween * std::ldexp(difference, -shift);
}

/// The number of fractional bits between the passes that suits rows like the columns best. Of the
/// columns alone, so that the rows of a field come out as they do in the frame.
int32_t ChooseFraction(const Bounds& columns, double largestBetween) {
  const double difference = columns.count / 3.0;  // as it is on average
  const auto error = [&](int32_t fraction) {
    return RowError(columns, difference, largestBetween, fraction);
  };
  int32_t best = 0;
  for (int32_t fraction = 1; fraction <= 7; ++fraction) {
    if (std::ldexp(largestBetween, fraction) > kLargestWeight) break;
    if (error(fraction) < error(best)) best = fraction;
  }
  return best;
}

/// Rounds an entry's weights so that they sum to 1 << shift: the sums up to each of them are what
/// is rounded. Returns the sum of the differences' magnitudes.
double RoundWeights(const float* weights, int32_t count, double factor, int32_t shift,
                    int16_t* rounded) {
  // Beside 1.5 * 2^52 a double has no room for a fraction.
  constexpr double kNoFraction = 6755399441055744.0;
  double sum = 0.0, before = 0.0, difference = 0.0;
  for (int32_t i = 0; i < count; ++i) {
    const double exact = weights[i] * factor;
    sum += exact;
    const double whole = i + 1 < count ? (sum + kNoFraction) - kNoFraction : std::ldexp(1.0, shift);
    rounded[i] = static_cast<int16_t>(static_cast<int32_t>(whole - before));
    difference += std::abs(whole - before - exact);
    before = whole;
  }
  return difference;
}

int32_t Word(int16_t low, int16_t high) {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(low)) |
                              static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16);
}

/// Cuts a table's runs into groups of `group` pixels (2 or 4) from `base` on; entry i's weights sum
/// to 1 << shifts[i].
FixedWeights Round(const WeightTable& table, int32_t base, int32_t group,
                   const std::vector<int32_t>& shifts) {
  FixedWeights fixed;
  fixed.base = base;
  fixed.entries.resize(table.entries.size());
  size_t words = 0;
  for (size_t i = 0; i < table.entries.size(); ++i) {
    const WeightTable::Entry& entry = table.entries[i];
    FixedWeights::Entry& to = fixed.entries[i];
    to.shift = shifts[i];
    to.firstGroup = (entry.first - base) / group;
    to.groups = (entry.first - base + entry.count - 1) / group + 1 - to.firstGroup;
    to.offset = words;
    words += static_cast<size_t>(to.groups) * static_cast<size_t>(group / 2);
  }
  fixed.words.resize(words);
  std::vector<int16_t> run;
  for (size_t i = 0; i < table.entries.size(); ++i) {
    const WeightTable::Entry& entry = table.entries[i];
    FixedWeights::Entry& to = fixed.entries[i];
    run.assign(static_cast<size_t>(to.groups) * static_cast<size_t>(group), 0);
    to.difference =
        RoundWeights(table.Weights(entry), entry.count, std::ldexp(entry.normaliser, to.shift),
                     to.shift, run.data() + (entry.first - base - to.firstGroup * group));
    int32_t* word = fixed.words.data() + to.offset;
    if (group == 2) {
      for (size_t k = 0; k < run.size(); k += 2) *word++ = Word(run[k], run[k + 1]);
    } else {
      for (size_t k = 0; k < run.size(); k += 4) {
        *word++ = Word(run[k], run[k + 2]);
        *word++ = Word(run[k + 1], run[k + 3]);
      }
    }
  }
  int32_t keep = fixed.entries.back().firstGroup;
  for (size_t i = fixed.entries.size(); i-- > 0;) {
    keep = std::min(keep, fixed.entries[i].firstGroup);
    fixed.entries[i].keep = keep;
  }
  int32_t end = 0;
  for (const FixedWeights::Entry& entry : fixed.entries) {
    end = std::max(end, entry.firstGroup + entry.groups);
    fixed.window = std::max(fixed.window, end - entry.keep);
  }
  return fixed;
}

}  // namespace

std::optional<FixedFilters> MakeFixedFilters(const WeightTable& columns, const WeightTable& rows) {
  Bounds columnBounds;
  for (const WeightTable::Entry& entry : columns.entries) {
    columnBounds.Include(BoundsOf(entry, columns.Weights(entry)));
  }
  const int32_t columnShift = LargestShift(columnBounds, kLargestSample);
  const double largestBetween = kLargestSample * columnBounds.absolute + 1.0;
  const int32_t fraction = ChooseFraction(columnBounds, largestBetween);
  if (columnShift <= fraction || std::ldexp(largestBetween, fraction) > kLargestWeight) return {};
  std::vector<Bounds> rowBounds;
  std::vector<int32_t> rowShifts;
  for (const WeightTable::Entry& entry : rows.entries) {
    rowBounds.push_back(BoundsOf(entry, rows.Weights(entry)));
    rowShifts.push_back(LargestShift(rowBounds.back(), std::ldexp(largestBetween, fraction)));
    if (rowShifts.back() == 0) return {};
  }

  const int32_t firstColumn = columns.ImagePixels().first;
  FixedFilters filters = {Round(columns, firstColumn - firstColumn % 4, 4,
                                std::vector<int32_t>(columns.entries.size(), columnShift)),
                          Round(rows, rows.ImagePixels().first, 2, rowShifts), fraction};
  double difference = 0.0;
  for (const FixedWeights::Entry& entry : filters.columns.entries) {
    difference = std::max(difference, entry.difference);
  }
  const double columnError = kLargestSample * std::ldexp(difference, -columnShift);
  for (size_t i = 0; i < rowBounds.size(); ++i) {
    const double error =
        columnError * rowBounds[i].absolute +
        RowError(rowBounds[i], filters.rows.entries[i].difference, largestBetween, fraction);
    if (!(error < kMostError)) return {};
  }
  return filters;
}

}  // namespace kelto
