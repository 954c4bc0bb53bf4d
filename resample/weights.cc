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

/// Whether the taps of every position with this whole part are image pixels as they stand: then
/// they are neighbours, none of them mirrored or repeated.
bool TapsLieInImage(const AxisFilter& axis, int64_t offset) {
  const int64_t first = offset + axis.taps.lo, last = offset + axis.taps.hi;
  return first >= 0 && last <= axis.samples.last && first + axis.samples.base >= 0 &&
         last + axis.samples.base < axis.samples.imageSize;
}

/// What ListTaps does, where taps need no listing: the entry's run straight from the kernel.
void AppendNeighbours(const AxisFilter& axis, const KernelSampler& kernel, float position,
                      WeightTable::Entry& entry, std::vector<float>& weights) {
  const float scale = axis.map.scale;
  const float whole = std::floor(position);
  const int32_t count = axis.taps.hi - axis.taps.lo + 1;
  entry.first = static_cast<int32_t>(static_cast<int64_t>(whole) + axis.taps.lo);
  entry.offset = weights.size();
  weights.resize(entry.offset + static_cast<size_t>(count));
  float* const run = weights.data() + entry.offset;
  const double lo = axis.taps.lo, offCentre = static_cast<double>(whole) - position;
  kernel.Sample(scale > 1.0f ? (lo - 0.5 + offCentre) / scale : lo + 1.0 + offCentre, count, run);
  float sum = 0.0f;
  for (int32_t tap = 0; tap < count; ++tap) sum += run[tap];
  entry.normaliser = 1.0f / sum;
  if (sum == 0.0f) {
    std::fill_n(run, count, 0.0f);
    run[-axis.taps.lo] = entry.normaliser = 1.0f;
  }
}

}  // namespace

TapRange AxisTapRange(const FilterSpec& filter, float scale) {
  if (!(scale > 1.0f)) return {TruncatedBound(filter.lo), TruncatedBound(filter.hi)};
  return {TruncatedBound(filter.lo * scale - 0.5f), TruncatedBound(filter.hi * scale + 0.5f)};
}

TapRange WholeKernelTaps(const FilterSpec& filter, float scale) {
  if (!(scale > 1.0f)) {
    return {TruncatedBound(std::floor(filter.lo) - 1.0f), TruncatedBound(std::ceil(filter.hi))};
  }
  return {TruncatedBound(std::floor(filter.lo * scale)),
          TruncatedBound(std::ceil(filter.hi * scale + 1.5f))};
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
    const bool beyond = std::abs(distance) >= axis.filter.end;
    const float weight = beyond ? 0.0f : axis.filter.kernel(distance, axis.filter.data);
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
  // Tap by tap the kernel's argument advances by one sample, stretched like the kernel.
  const KernelSampler kernel(axis.filter, axis.map.scale > 1.0f ? 1.0 / axis.map.scale : 1.0);
  std::vector<Tap> taps;
  for (int32_t i = 0; i < count; ++i) {
    WeightTable::Entry& entry = table.entries[static_cast<size_t>(i)];
    const float position = axis.map.At(first + i * step);
    if (TapsLieInImage(axis, static_cast<int64_t>(std::floor(position)) - axis.samples.base)) {
      AppendNeighbours(axis, kernel, position, entry, table.weights);
    } else {
      entry.normaliser = ListTaps(axis, position, taps);
      AppendRun(taps, entry, table.weights);
    }
    TrimRun(entry, table.weights);
  }
  return table;
}

}  // namespace kelto
