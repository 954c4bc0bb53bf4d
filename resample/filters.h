// The filter of each quality level: its kernel and how far it reaches.
#pragma once

#include <limits>
#include <optional>

#include "resample/job.h"
#include "resample/kernels.h"

namespace kelto {

/// A kernel and the bounds within which taps are weighed by it. The bounds are the filter's own,
/// not the kernel's support: narrower ones cut the kernel off.
struct FilterSpec {
  KernelFunction kernel = nullptr;  ///< one of kernels.h; null for no filter
  const void* data = nullptr;       ///< the kernel's parameters, which outlive the filter
  /// In source pixels from the sampling position at scale 1, lo <= 0 <= hi; minifying stretches
  /// both by the scale.
  float lo = 0.0f, hi = 0.0f;
  /// From this distance on the kernel counts as 0, whatever it is there.
  float end = std::numeric_limits<float>::infinity();
};

/// A filter's kernel at places `step` apart: as quickly as its kind allows, within 1e-6 of it.
class KernelSampler {
 public:
  KernelSampler(const FilterSpec& filter, double step);
  /// The kernel at `first`, `first + step`, ...: `count` values.
  void Sample(double first, int32_t count, float* values) const;

 private:
  FilterSpec filter_;
  double step_;
  std::optional<SincSteps> sinc_;
};

/// The filter of a level for drawing frames; null for the real-time path, which is what every value
/// outside 1 .. 7 means.
const FilterSpec* FrameFilter(int32_t filterMode);

/// The same for reductions, whose bounds are integers.
const FilterSpec* ReductionFilter(int32_t filterMode);

}  // namespace kelto
