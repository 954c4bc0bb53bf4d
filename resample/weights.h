// Weight tables: which source samples each destination pixel of an axis is made of, and how much
// of each. Built once per call and axis, read by every pass.
#pragma once

#include <cstdint>
#include <vector>

#include "resample/canvas.h"
#include "resample/filters.h"
#include "resample/geometry.h"

namespace kelto {

/// Tap numbers around a sampling position, inclusive.
struct TapRange {
  int32_t lo = 0, hi = 0;
};

/// The taps that a filter needs at a scale: its bounds, widened when minifying, as integers
/// (truncated). Bounded, whatever the scale.
TapRange AxisTapRange(const FilterSpec& filter, float scale);

/// The range that both axes use: the one that begins lower. A kernel that is not zero outside its
/// bounds therefore weighs taps of the narrower axis beyond them, since films made so far look so.
TapRange CommonTapRange(TapRange columns, TapRange rows);

/// The taps of every pixel that the filter's kernel reaches within its bounds at a scale, wherever
/// between two pixels the sampling position lies: up to two more than AxisTapRange has. Bounded.
TapRange WholeKernelTaps(const FilterSpec& filter, float scale);

/// How one axis is filtered.
struct AxisFilter {
  FilterSpec filter;
  AxisMap map;
  SampleRange samples;
  TapRange taps;
};

/// `common` without the taps too far outside the axis's own range to matter in single precision.
AxisFilter MakeAxisFilter(const FilterSpec& filter, const PictureAxis& axis, TapRange common);

/// One source sample's part in a destination pixel.
struct Tap {
  int32_t imagePixel;  ///< column or row of the image, mirrored into it: 0 .. size - 1
  float weight;        ///< the kernel's value, not normalised; negative in a kernel's lobes
};

/// Fills `taps` with those of the sampling position `position`, in order from lo to hi; returns the
/// factor that their weighted sum is multiplied by, 1 / the sum of the weights. Where the weights
/// sum to nothing, tap 0 alone counts.
float ListTaps(const AxisFilter& axis, float position, std::vector<Tap>& taps);

/// Taps of several destination pixels, those that mirroring brings to one image pixel merged and
/// zeros at the ends left out: each pixel is a run of weights over neighbouring image pixels.
struct WeightTable {
  struct Entry {
    int32_t first = 0;  ///< the run's first image pixel
    int32_t count = 0;  ///< at least 1
    size_t offset = 0;  ///< of its weights in `weights`
    float normaliser = 1.0f;
  };
  std::vector<Entry> entries;
  std::vector<float> weights;

  const float* Weights(const Entry& entry) const { return weights.data() + entry.offset; }
  /// The image pixels that any entry needs.
  Range ImagePixels() const;
};

/// The table of `count` destination pixels: `first`, `first + step`, ...
WeightTable BuildWeightTable(const AxisFilter& axis, int32_t first, int32_t count, int32_t step);

}  // namespace kelto
