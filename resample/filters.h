// The filter of each quality level: its kernel and how far it reaches.
#pragma once

#include "resample/job.h"
#include "resample/kernels.h"

namespace kelto {

struct FilterSpec {
  KernelFunction kernel = nullptr;
  const void* data = nullptr;  ///< the kernel's parameters
  float lo = 0.0f, hi = 0.0f;  ///< support bounds in source pixels at scale 1, lo <= 0 <= hi
};

/// The filter of a level for drawing frames; null for the real-time path, which is what every value
/// outside 1 .. 7 means.
const FilterSpec* FrameFilter(int32_t filterMode);

/// The same for reductions, whose bounds are whole numbers.
const FilterSpec* ReductionFilter(int32_t filterMode);

}  // namespace kelto
