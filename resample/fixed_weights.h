// Weight tables as 16-bit fixed point, for the passes that multiply pairs of them at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "resample/weights.h"

namespace kelto {

/// A weight table's runs cut into groups of neighbouring image pixels, the first group starting at
/// `base`. Two 16-bit weights share a word.
///
/// Where a run ends at the picture's edge, the pixel there may bear nearly all weight. Many small
/// weights beside it would be rounded too coarsely were it to fit 16 bits: what it has beyond them
/// is multiplied by further words.
struct FixedWeights {
  /// Words that a group is multiplied by once more.
  struct Extra {
    int32_t group = 0;  ///< counted from its entry's first
    int32_t words[2] = {};
  };
  struct Entry {
    int32_t firstGroup = 0;
    int32_t groups = 0;
    int32_t keep = 0;        ///< the lowest group that this or any later entry needs
    int32_t shift = 0;       ///< the weights sum to 1 << shift exactly
    size_t offset = 0;       ///< of its words in `words`
    size_t extraOffset = 0;  ///< of its further words in `extras`
    size_t extraCount = 0;   ///< of nearly all entries 0
    /// By how much the weights differ from the exact ones in all, in units of 1 / (1 << shift).
    double difference = 0.0;
  };
  int32_t base = 0;    ///< image pixel at which group 0 starts
  int32_t window = 0;  ///< groups that must be kept at a time when entries are taken in order
  std::vector<Entry> entries;
  std::vector<int32_t> words;
  std::vector<Extra> extras;

  const int32_t* Words(const Entry& entry) const { return words.data() + entry.offset; }
  std::span<const Extra> Extras(const Entry& entry) const {
    return {extras.data() + entry.extraOffset, entry.extraCount};
  }
};

/// A table of groups of four pixels a, b, c, d with their weights as signed bytes instead, for
/// products of bytes: the first word has the lower bytes of all four, a's lowest, the second one
/// the upper bytes; 256 times an upper byte and a lower one make a weight. Entries that are one
/// group shorter than the longest take another one whose weights are 0, so that loops over them all
/// end alike and processors foresee it.
FixedWeights InBytes(const FixedWeights& weights);

/// Both axes in fixed point, and how the value between the passes is scaled.
///
/// The first pass sums bytes less 128, so that its results, kept with `fraction` fractional bits,
/// fit 16 bits; the second pass's sums of those fit 32.
struct FixedFilters {
  /// Groups of four pixels a, b, c, d as two words: a below c, then b below d.
  FixedWeights columns;
  /// Groups of two rows as one word, the upper row in the lower half.
  FixedWeights rows;
  int32_t fraction = 0;
};

/// The filters in fixed point, or nothing when the result could differ from the exact one by a
/// level: tables that reach very far, or with weights of both signs that nearly cancel.
std::optional<FixedFilters> MakeFixedFilters(const WeightTable& columns, const WeightTable& rows);

}  // namespace kelto
