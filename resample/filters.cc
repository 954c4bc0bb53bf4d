#include "resample/filters.h"

#include <cmath>
#include <iterator>

namespace kelto {
namespace {

constexpr double kHiQualLobes = 5.0;
constexpr double kUltraQualLobes = 16.0;

/// By filter mode; mode 0 has no filter.
const FilterSpec kFrameFilters[] = {
    {},
    {KernelTriangle, nullptr, -1.0f, 1.0f},
    {KernelQuadratic, nullptr, -1.5f, 1.5f},
    {KernelCubic, nullptr, -2.0f, 2.0f},
    {KernelCatrom, nullptr, -2.0f, 2.0f},
    // Wider than its registry row says, because films made so far look like this.
    {KernelGaussian, nullptr, -1.5f, 1.5f},
    {KernelSinc, &kHiQualLobes, -5.0f, 5.0f},
    {KernelSinc, &kUltraQualLobes, -16.0f, 16.0f},
};

const FilterSpec kReductionFilters[] = {
    {},
    // One-sided, because cached images made so far look like this.
    {KernelTriangle, nullptr, -1.0f, 0.0f},
    {KernelQuadratic, nullptr, -2.0f, 2.0f},
    {KernelCubic, nullptr, -2.0f, 2.0f},
    {KernelCatrom, nullptr, -2.0f, 2.0f},
    {KernelGaussian, nullptr, -2.0f, 2.0f},
    {KernelSinc, &kHiQualLobes, -5.0f, 5.0f},
    {KernelSinc, &kUltraQualLobes, -16.0f, 16.0f},
};

template <size_t N>
const FilterSpec* Find(const FilterSpec (&filters)[N], int32_t mode) {
  return mode >= kFilterTriangle && mode < static_cast<int32_t>(N) ? &filters[mode] : nullptr;
}

}  // namespace

KernelSampler::KernelSampler(const FilterSpec& filter, double step) : filter_(filter), step_(step) {
  if (filter.kernel == KernelSinc) sinc_.emplace(step, *static_cast<const double*>(filter.data));
}

void KernelSampler::Sample(double first, int32_t count, float* values) const {
  if (sinc_) {
    sinc_->Sample(first, count, values);
  } else {
    for (int32_t i = 0; i < count; ++i) {
      values[i] = filter_.kernel(static_cast<float>(first + i * step_), filter_.data);
    }
  }
  const auto beyond = [&](int32_t i) { return std::abs(first + i * step_) >= filter_.end; };
  for (int32_t i = 0; i < count && beyond(i); ++i) values[i] = 0.0f;
  for (int32_t i = count - 1; i >= 0 && beyond(i); --i) values[i] = 0.0f;
}

const FilterSpec* FrameFilter(int32_t filterMode) { return Find(kFrameFilters, filterMode); }

const FilterSpec* ReductionFilter(int32_t filterMode) {
  return Find(kReductionFilters, filterMode);
}

}  // namespace kelto
