#include "resample/filtered.h"

#include <algorithm>

namespace kelto {
namespace {

constexpr size_t kChannels = 4;

/// First pass of one source row: each column's weighted sum over `samples`, the row's pixels as
/// four floats each from pixel `firstSample` on.
void FilterAlongRow(const WeightTable& columns, const float* samples, int32_t firstSample,
                    float* filtered) {
  for (const WeightTable::Entry& entry : columns.entries) {
    const float* weights = columns.Weights(entry);
    const float* sample = samples + kChannels * static_cast<size_t>(entry.first - firstSample);
    float sum[kChannels] = {};
    for (int32_t tap = 0; tap < entry.count; ++tap, sample += kChannels) {
      for (size_t c = 0; c < kChannels; ++c) sum[c] += weights[tap] * sample[c];
    }
    for (size_t c = 0; c < kChannels; ++c) *filtered++ = sum[c] * entry.normaliser;
  }
}

/// The first pass's rows that the current destination row needs, made when first asked for. A row
/// goes when its slot is wanted for a later one.
class IntermediateRows {
 public:
  explicit IntermediateRows(const FilteredPlan& plan)
      : plan_(plan),
        sourceColumns_(plan.columnWeights.ImagePixels()),
        samples_(kChannels * static_cast<size_t>(sourceColumns_.end - sourceColumns_.first)),
        rowLength_(kChannels * plan.columnWeights.entries.size()),
        next_(plan.rowWeights.ImagePixels().first) {
    // Every row made since an entry's first must stay. Mirroring makes entries near the picture's
    // ends start or end before the entry above them does.
    int32_t made = 0;
    for (const WeightTable::Entry& entry : plan.rowWeights.entries) {
      made = std::max(made, entry.first + entry.count);
      slots_ = std::max(slots_, made - entry.first);
    }
    storage_.resize(rowLength_ * static_cast<size_t>(slots_));
  }

  size_t RowLength() const { return rowLength_; }

  /// Makes the rows up to the last that `entry` needs; entries come in the table's order.
  void Advance(const WeightTable::Entry& entry) {
    for (; next_ < entry.first + entry.count; ++next_) Make(next_);
  }

  const float* Row(int32_t sourceRow) const { return storage_.data() + Slot(sourceRow); }

 private:
  size_t Slot(int32_t sourceRow) const {
    return rowLength_ * static_cast<size_t>(sourceRow % slots_);
  }

  void Make(int32_t sourceRow) {
    const uint8_t* bytes = plan_.source.pixels + sourceRow * plan_.source.rowBytes +
                           ptrdiff_t{4} * sourceColumns_.first;
    std::copy_n(bytes, samples_.size(), samples_.data());
    FilterAlongRow(plan_.columnWeights, samples_.data(), sourceColumns_.first,
                   storage_.data() + Slot(sourceRow));
  }

  const FilteredPlan& plan_;
  Range sourceColumns_;
  std::vector<float> samples_;  ///< one source row
  size_t rowLength_;            ///< floats in an intermediate row
  std::vector<float> storage_;  ///< `slots_` rows
  int32_t slots_ = 1;
  int32_t next_;  ///< the lowest row not made yet
};

/// Second pass of one destination row: the weighted sum of the entry's rows.
void FilterDownColumns(const WeightTable& rows, const WeightTable::Entry& entry,
                       const IntermediateRows& intermediate, std::vector<float>& filtered) {
  std::fill(filtered.begin(), filtered.end(), 0.0f);
  const float* weights = rows.Weights(entry);
  for (int32_t tap = 0; tap < entry.count; ++tap) {
    const float* row = intermediate.Row(entry.first + tap);
    for (size_t i = 0; i < filtered.size(); ++i) filtered[i] += weights[tap] * row[i];
  }
  for (float& value : filtered) value *= entry.normaliser;
}

/// Saturated; not a number becomes 0.
float WithinByte(float value) { return value > 0.0f ? std::min(value, 255.0f) : 0.0f; }

/// To nearest, ties to even: beside 1.5 * 2^23 a float has no room for a fraction.
uint8_t RoundToByte(float value) {
  constexpr float kNoFraction = 12582912.0f;
  return static_cast<uint8_t>(value + kNoFraction - kNoFraction);
}

/// Replaces `byte` by the filtered value, or mixes the two, both bytes, where the picture covers a
/// part.
void Store(float value, float coverage, uint8_t& byte) {
  const uint8_t picture = RoundToByte(WithinByte(value));
  byte = coverage < 1.0f ? RoundToByte(static_cast<float>(picture) * coverage +
                                       static_cast<float>(byte) * (1.0f - coverage))
                         : picture;
}

void StoreRow422(const FilteredPlan& plan, const float* filtered, float rowCoverage, uint8_t* row) {
  const int32_t chromaByte[2] = {plan.chroma.even, plan.chroma.odd};
  uint8_t* pixel = row + ptrdiff_t{2} * plan.columns.first;
  size_t parity = static_cast<size_t>(plan.columns.first % 2);
  for (const float columnCoverage : plan.columnCoverage) {
    const float coverage = columnCoverage * rowCoverage;
    Store(filtered[0], coverage, pixel[0]);
    Store(filtered[chromaByte[parity]], coverage, pixel[1]);
    filtered += kChannels;
    pixel += 2;
    parity ^= 1;
  }
}

void StoreRow4Byte(const FilteredPlan& plan, const float* filtered, float rowCoverage,
                   uint8_t* row) {
  uint8_t* pixel = row + ptrdiff_t{4} * plan.columns.first;
  for (const float columnCoverage : plan.columnCoverage) {
    const float coverage = columnCoverage * rowCoverage;
    for (size_t c = 0; c < kChannels; ++c) Store(*filtered++, coverage, *pixel++);
  }
}

}  // namespace

void DrawFiltered(const FilteredPlan& plan) {
  if (plan.columns.Empty() || plan.rows.Empty()) return;
  IntermediateRows intermediate(plan);
  std::vector<float> filtered(intermediate.RowLength());
  for (size_t i = 0; i < plan.rowWeights.entries.size(); ++i) {
    const WeightTable::Entry& entry = plan.rowWeights.entries[i];
    intermediate.Advance(entry);
    FilterDownColumns(plan.rowWeights, entry, intermediate, filtered);
    uint8_t* const row = plan.canvas.Row(plan.rows.first + static_cast<int32_t>(i));
    if (plan.canvas.format == PixelFormat::Packed422) {
      StoreRow422(plan, filtered.data(), plan.rowCoverage[i], row);
    } else {
      StoreRow4Byte(plan, filtered.data(), plan.rowCoverage[i], row);
    }
  }
}

}  // namespace kelto
