#include "resample/fixed_weights.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelto {
namespace {

constexpr double kLargestWeight = 32766.0;  // one more after rounding
/// Of one word's half: what a signed byte and 256 times another make. Further words take the rest.
constexpr int32_t kLargestPart = 127 * 256 + 127;
/// Bytes less 128 are no larger than this.
constexpr double kLargestSample = 128.0;
/// Of 32-bit sums; a little is left for the rounding of weights.
constexpr double kLargestSum = 0.98 * 2147483648.0;
/// The most by which exact and computed values may differ before each is rounded to a level.
constexpr double kMostError = 0.95;
/// The error of an axis's rounded weights, in levels, from which further words are worth their
/// time.
constexpr double kCoarse = 0.2;
/// That a weight is made of at most.
constexpr double kMostWords = 16.0;

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

/// The values that a pass's weights multiply.
struct Values {
  double largest;  ///< as the pass holds them
  double levels;   ///< the same in levels
};

/// The largest shift at which weights fit `words` words of 16 bits and sums of `values` times them
/// one of 32.
int32_t LargestShift(const Bounds& bounds, const Values& values, double words = 1.0) {
  const double fits = std::min(words * kLargestWeight / bounds.largest,
                               kLargestSum / (values.largest * (bounds.absolute + 1.0)));
  // Not a number where weights are none.
  return fits >= 2.0 ? std::min(std::ilogb(fits), 24) : 0;
}

/// The error in levels when rounded weights differ from the exact ones by `difference` units in
/// all.
double RoundingError(const Values& values, double difference, int32_t shift) {
  return values.levels * std::ldexp(difference, -shift);
}

/// The first pass's results, of which the second makes its own.
Values ValuesBetween(double largestBetween, int32_t fraction) {
  return {std::ldexp(largestBetween, fraction), largestBetween};
}

/// What rounding to `fraction` bits between the passes adds, in levels.
double FractionError(const Bounds& rows, int32_t fraction) {
  return std::ldexp(0.5, -fraction) * rows.absolute;
}

/// The number of fractional bits between the passes that suits rows like the columns best. Of the
/// columns alone, so that the rows of a field come out as they do in the frame.
int32_t ChooseFraction(const Bounds& columns, double largestBetween) {
  const double difference = columns.count / 3.0;  // as it is on average
  const auto error = [&](int32_t fraction) {
    const Values between = ValuesBetween(largestBetween, fraction);
    const int32_t shift = LargestShift(columns, between);
    return shift == 0
               ? 1e9
               : FractionError(columns, fraction) + RoundingError(between, difference, shift);
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
template <typename Whole>
double RoundWeights(const float* weights, int32_t count, double factor, int32_t shift,
                    Whole* rounded) {
  // Beside 1.5 * 2^52 a double has no room for a fraction.
  constexpr double kNoFraction = 6755399441055744.0;
  double sum = 0.0, before = 0.0, difference = 0.0;
  for (int32_t i = 0; i < count; ++i) {
    const double exact = weights[i] * factor;
    sum += exact;
    const double whole = i + 1 < count ? (sum + kNoFraction) - kNoFraction : std::ldexp(1.0, shift);
    rounded[i] = static_cast<Whole>(static_cast<int32_t>(whole - before));
    difference += std::abs(whole - before - exact);
    before = whole;
  }
  return difference;
}

int32_t Word(int16_t low, int16_t high) {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(low)) |
                              static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16);
}

/// The words of a group of weights, two or four.
template <int32_t kGroup>
void PutWords(const int16_t* weights, int32_t* words) {
  if constexpr (kGroup == 2) {
    words[0] = Word(weights[0], weights[1]);
  } else {
    words[0] = Word(weights[0], weights[2]);
    words[1] = Word(weights[1], weights[3]);
  }
}

/// Rounds an entry's weights that may need several words.
template <int32_t kGroup>
void RoundHeavy(const float* weights, const WeightTable::Entry& entry, int32_t lead,
                FixedWeights& fixed, FixedWeights::Entry& to) {
  std::vector<int32_t> rest(static_cast<size_t>(to.groups) * kGroup);
  to.difference = RoundWeights(weights, entry.count, std::ldexp(entry.normaliser, to.shift),
                               to.shift, rest.data() + lead);
  to.extraOffset = fixed.extras.size();
  for (int32_t group = 0; group < to.groups; ++group) {
    int32_t* const from = rest.data() + static_cast<ptrdiff_t>(group) * kGroup;
    for (bool first = true; first || std::any_of(from, from + kGroup, [](int32_t w) { return w; });
         first = false) {
      int16_t part[kGroup];
      for (int32_t i = 0; i < kGroup; ++i) {
        part[i] = static_cast<int16_t>(std::clamp(from[i], -kLargestPart, kLargestPart));
        from[i] -= part[i];
      }
      if (!first) fixed.extras.push_back({group, {}});
      const size_t word = static_cast<size_t>(group) * (kGroup / 2);
      PutWords<kGroup>(part,
                       first ? fixed.words.data() + to.offset + word : fixed.extras.back().words);
    }
  }
  to.extraCount = fixed.extras.size() - to.extraOffset;
}

/// What must be kept of the image's groups, by which ones the entries take.
void SetWindow(FixedWeights& fixed) {
  int32_t keep = fixed.entries.back().firstGroup;
  for (size_t i = fixed.entries.size(); i-- > 0;) {
    keep = std::min(keep, fixed.entries[i].firstGroup);
    fixed.entries[i].keep = keep;
  }
  int32_t end = 0;
  fixed.window = 0;
  for (const FixedWeights::Entry& entry : fixed.entries) {
    end = std::max(end, entry.firstGroup + entry.groups);
    fixed.window = std::max(fixed.window, end - entry.keep);
  }
}

/// Cuts a table's runs into groups of kGroup pixels (2 or 4) from `base` on, each entry's weights
/// at the largest shift that suits `values`. Nothing where one's is `lowestShift` or less.
template <int32_t kGroup>
std::optional<FixedWeights> Round(const WeightTable& table, const std::vector<Bounds>& bounds,
                                  int32_t base, const Values& values, int32_t lowestShift) {
  FixedWeights fixed;
  fixed.base = base;
  fixed.entries.resize(table.entries.size());
  size_t words = 0;
  for (size_t i = 0; i < table.entries.size(); ++i) {
    const WeightTable::Entry& entry = table.entries[i];
    FixedWeights::Entry& to = fixed.entries[i];
    to.shift = LargestShift(bounds[i], values);
    if (to.shift <= lowestShift) return {};
    to.firstGroup = (entry.first - base) / kGroup;
    to.groups = (entry.first - base + entry.count - 1) / kGroup + 1 - to.firstGroup;
    to.offset = words;
    words += static_cast<size_t>(to.groups) * (kGroup / 2);
  }
  fixed.words.resize(words);
  std::vector<int16_t> run;
  for (size_t i = 0; i < table.entries.size(); ++i) {
    const WeightTable::Entry& entry = table.entries[i];
    const float* const weights = table.Weights(entry);
    FixedWeights::Entry& to = fixed.entries[i];
    const int32_t lead = entry.first - base - to.firstGroup * kGroup;
    run.assign(static_cast<size_t>(to.groups) * kGroup, 0);
    to.difference = RoundWeights(weights, entry.count, std::ldexp(entry.normaliser, to.shift),
                                 to.shift, run.data() + lead);
    const int32_t shift = to.shift;
    if (RoundingError(values, to.difference, shift) > kCoarse) {
      to.shift = std::max(shift, LargestShift(bounds[i], values, kMostWords));
    }
    if (to.shift > shift || *std::max_element(run.begin(), run.end()) > kLargestPart) {
      RoundHeavy<kGroup>(weights, entry, lead, fixed, to);
      continue;
    }
    int32_t* word = fixed.words.data() + to.offset;
    for (size_t k = 0; k < run.size(); k += kGroup, word += kGroup / 2) {
      PutWords<kGroup>(run.data() + k, word);
    }
  }
  SetWindow(fixed);
  return fixed;
}

/// The weights of a group of four, in its two words, as bytes: what is below 256, signed, in the
/// first, the rest in the second, a pixel in each byte.
void CutToBytes(const int32_t* words, int32_t* bytes) {
  const auto ac = static_cast<uint32_t>(words[0]), bd = static_cast<uint32_t>(words[1]);
  constexpr uint32_t kLow = 0x00FF00FF;
  bytes[0] = static_cast<int32_t>((ac & kLow) | (bd & kLow) << 8);
  // Where the lower byte is negative, the upper one is one more.
  const auto upper = [](uint32_t pair) {
    return ((pair >> 8 & kLow) + (pair >> 7 & 0x00010001)) & kLow;
  };
  bytes[1] = static_cast<int32_t>(upper(ac) | upper(bd) << 8);
}

}  // namespace

FixedWeights InBytes(const FixedWeights& weights) {
  FixedWeights bytes;
  bytes.base = weights.base;
  bytes.entries = weights.entries;
  bytes.extras = weights.extras;
  int32_t most = 0, end = 0;
  for (const FixedWeights::Entry& entry : weights.entries) {
    most = std::max(most, entry.groups);
    end = std::max(end, entry.firstGroup + entry.groups);
  }
  bytes.words.assign(2 * static_cast<size_t>(most) * weights.entries.size(), 0);
  size_t offset = 0;
  for (size_t i = 0; i < weights.entries.size(); ++i) {
    const FixedWeights::Entry& from = weights.entries[i];
    FixedWeights::Entry& to = bytes.entries[i];
    to.offset = offset;
    int32_t lead = 0;
    if (from.groups + 1 == most) {
      lead = from.firstGroup + most > end ? 1 : 0;
      to.firstGroup -= lead;
      to.groups = most;
    }
    const int32_t* words = weights.Words(from);
    int32_t* cut = bytes.words.data() + offset + 2 * static_cast<size_t>(lead);
    for (int32_t group = 0; group < from.groups; ++group, words += 2, cut += 2) {
      CutToBytes(words, cut);
    }
    for (size_t extra = 0; extra < from.extraCount; ++extra) {
      FixedWeights::Extra& further = bytes.extras[from.extraOffset + extra];
      CutToBytes(weights.extras[from.extraOffset + extra].words, further.words);
      further.group += lead;
    }
    offset += 2 * static_cast<size_t>(to.groups);
  }
  SetWindow(bytes);
  return bytes;
}

std::optional<FixedFilters> MakeFixedFilters(const WeightTable& columns, const WeightTable& rows) {
  const auto boundsOf = [](const WeightTable& table) {
    std::vector<Bounds> bounds;
    bounds.reserve(table.entries.size());
    for (const WeightTable::Entry& entry : table.entries) {
      bounds.push_back(BoundsOf(entry, table.Weights(entry)));
    }
    return bounds;
  };
  const std::vector<Bounds> columnBounds = boundsOf(columns), rowBounds = boundsOf(rows);
  Bounds allColumns;
  for (const Bounds& bounds : columnBounds) allColumns.Include(bounds);
  const double largestBetween = kLargestSample * allColumns.absolute + 1.0;
  const int32_t fraction = ChooseFraction(allColumns, largestBetween);
  const Values samples = {kLargestSample, kLargestSample};
  const Values between = ValuesBetween(largestBetween, fraction);
  if (between.largest > kLargestWeight) return {};

  const int32_t firstColumn = columns.ImagePixels().first;
  auto fixedColumns =
      Round<4>(columns, columnBounds, firstColumn - firstColumn % 4, samples, fraction);
  if (!fixedColumns) return {};
  auto fixedRows = Round<2>(rows, rowBounds, rows.ImagePixels().first, between, 0);
  if (!fixedRows) return {};
  double columnError = 0.0;
  for (const FixedWeights::Entry& entry : fixedColumns->entries) {
    columnError = std::max(columnError, RoundingError(samples, entry.difference, entry.shift));
  }
  for (size_t i = 0; i < rowBounds.size(); ++i) {
    const FixedWeights::Entry& row = fixedRows->entries[i];
    const double error = columnError * rowBounds[i].absolute +
                         FractionError(rowBounds[i], fraction) +
                         RoundingError(between, row.difference, row.shift);
    if (!(error < kMostError)) return {};
  }
  return FixedFilters{std::move(*fixedColumns), std::move(*fixedRows), fraction};
}

}  // namespace kelto
