#include "resample/weights.h"

#include <cmath>

namespace kelto {
namespace {

/// Taps to either side where a picture is zoomed out so far that little of it is left to see. No
/// legible picture needs as many.
constexpr float kMostTaps = 262144.0f;

/// Past this distance outside its bounds the widest kernel weighs under 2^-19.
constexpr int32_t kFarOutside = 1024;

int32_t TruncatedBound(float bound) {
  return static_cast<int32_t>(std::clamp(bound, -kMostTaps, kMostTaps));
}

/// Appends the taps' weights to the table as one run.
void AppendRun(const std::vector<Tap>& taps, WeightTable::Entry& entry,
               std::vector<float>& weights) {
  const auto [lowest, highest] =
      std::minmax_element(taps.begin(), taps.end(),
                          [](const Tap& a, const Tap& b) { return a.imagePixel < b.imagePixel; });
  entry.first = lowest->imagePixel;
  entry.offset = weights.size();
  weights.resize(entry.offset + static_cast<size_t>(highest->imagePixel - entry.first) + 1, 0.0f);
  float* run = weights.data() + entry.offset;
  for (const Tap& tap : taps) run[tap.imagePixel - entry.first] += tap.weight;
}

/// Leaves zeros at a run's ends out, but for one weight.
void TrimRun(WeightTable::Entry& entry, std::vector<float>& weights) {
  while (weights.size() > entry.offset + 1 && weights.back() == 0.0f) weights.pop_back();
  const auto run = weights.begin() + static_cast<ptrdiff_t>(entry.offset);
  const auto used = std::find_if(run, weights.end() - 1, [](float w) { return w != 0.0f; });
  entry.first += static_cast<int32_t>(used - run);
  weights.erase(run, used);
  entry.count = static_cast<int32_t>(weights.size() - entry.offset);
}

}  // namespace

TapRange AxisTapRange(const FilterSpec& filter, float scale) {
  if (!(scale > 1.0f)) return {TruncatedBound(filter.lo), TruncatedBound(filter.hi)};
  return {TruncatedBound(filter.lo * scale - 0.5f), TruncatedBound(filter.hi * scale + 0.5f)};
}

TapRange CommonTapRange(TapRange columns, TapRange rows) {
  return rows.lo < columns.lo ? rows : columns;
}

AxisFilter MakeAxisFilter(const FilterSpec& filter, const PictureAxis& axis, TapRange common) {
  const TapRange own = AxisTapRange(filter, axis.map.scale);
  const TapRange taps = {std::max(common.lo, own.lo - kFarOutside),
                         std::min(common.hi, own.hi + kFarOutside)};
  return {filter, axis.map, axis.samples, taps};
}

float ListTaps(const AxisFilter& axis, float position, std::vector<Tap>& taps) {
  const float scale = axis.map.scale;
  const float whole = std::floor(position);
  const int64_t offset = static_cast<int64_t>(whole) - axis.samples.base;
  taps.clear();
  float sum = 0.0f;
  for (int32_t k = axis.taps.lo; k <= axis.taps.hi; ++k) {
    const float tap = static_cast<float>(k);
    // The two forms do not meet at scale 1; the views that callers ask for allow for the step.
    const float distance =
        scale > 1.0f ? (tap - 0.5f + whole - position) / scale : whole + 1.0f - position + tap;
    const float weight = axis.filter.kernel(distance, axis.filter.data);
    taps.push_back({axis.samples.ImagePixel(offset + k), weight});
    sum += weight;
  }
  if (sum != 0.0f) return 1.0f / sum;
  for (Tap& tap : taps) tap.weight = 0.0f;
  taps[static_cast<size_t>(-axis.taps.lo)].weight = 1.0f;
  return 1.0f;
}

Range WeightTable::ImagePixels() const {
  Range range;
  for (const Entry& entry : entries) {
    if (range.Empty()) range = {entry.first, entry.first};
    range.first = std::min(range.first, entry.first);
    range.end = std::max(range.end, entry.first + entry.count);
  }
  return range;
}

WeightTable BuildWeightTable(const AxisFilter& axis, int32_t first, int32_t count, int32_t step) {
  WeightTable table;
  table.entries.resize(static_cast<size_t>(count));
  std::vector<Tap> taps;
  for (int32_t i = 0; i < count; ++i) {
    WeightTable::Entry& entry = table.entries[static_cast<size_t>(i)];
    entry.normaliser = ListTaps(axis, axis.map.At(first + i * step), taps);
    AppendRun(taps, entry, table.weights);
    TrimRun(entry, table.weights);
  }
  return table;
}

}  // namespace kelto
