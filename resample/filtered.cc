#include "resample/filtered.h"

#include <algorithm>

#include "resample/filtered_store.h"

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

/// Saturated, to nearest, ties to even; not a number becomes 0.
uint8_t RoundToByte(float value) {
  // Beside 1.5 * 2^23 a float has no room for a fraction.
  constexpr float kNoFraction = 12582912.0f;
  const float within = value > 0.0f ? std::min(value, 255.0f) : 0.0f;
  return static_cast<uint8_t>(within + kNoFraction - kNoFraction);
}

/// The destination's bytes of a filtered row.
void RoundRow(const FilteredPlan& plan, const std::vector<float>& filtered,
              std::vector<uint8_t>& bytes) {
  bytes.clear();
  if (plan.canvas.format == PixelFormat::kFourByte) {
    for (const float value : filtered) bytes.push_back(RoundToByte(value));
    return;
  }
  const int32_t chromaByte[2] = {plan.chroma.even, plan.chroma.odd};
  const float* pixel = filtered.data();
  for (int32_t column = plan.columns.first; column < plan.columns.end; ++column) {
    bytes.push_back(RoundToByte(pixel[0]));
    bytes.push_back(RoundToByte(pixel[chromaByte[column % 2]]));
    pixel += kChannels;
  }
}

}  // namespace

void DrawFilteredScalar(const FilteredPlan& plan) {
  if (plan.columns.Empty() || plan.rows.Empty()) return;
  IntermediateRows intermediate(plan);
  std::vector<float> filtered(intermediate.RowLength());
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < plan.rowWeights.entries.size(); ++i) {
    const WeightTable::Entry& entry = plan.rowWeights.entries[i];
    intermediate.Advance(entry);
    FilterDownColumns(plan.rowWeights, entry, intermediate, filtered);
    RoundRow(plan, filtered, bytes);
    StoreFiltered(plan, i, 0, bytes.size(), bytes.data());
  }
}

}  // namespace kelto
