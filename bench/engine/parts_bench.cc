// Parts of the filtered path by themselves: kernels, weight tables, each of the two passes.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "bench/engine/jobs.h"
#include "resample/filtered.h"
#include "resample/filtered_fixed.h"
#include "resample/fixed_weights.h"
#include "resample/geometry.h"
#include "resample/resample.h"

namespace kelto::bench {
namespace {

constexpr double kReduced = 3.125;

/// The kernel at all taps of a frame's columns, as their table samples it.
void Kernel(benchmark::State& state, FilterSpec filter) {
  const TapRange taps = AxisTapRange(filter, static_cast<float>(kReduced));
  const int32_t count = taps.hi - taps.lo + 1;
  std::vector<float> values(static_cast<size_t>(count));
  for ([[maybe_unused]] auto _ : state) {
    const KernelSampler kernel(filter, 1 / kReduced);
    for (int32_t column = 0; column < kFrameWidth; ++column) {
      const double offCentre = static_cast<double>(column) / kFrameWidth;
      kernel.Sample((taps.lo - offCentre) / kReduced, count, values.data());
      benchmark::DoNotOptimize(values.data());
      benchmark::ClobberMemory();
    }
  }
  state.SetItemsProcessed(int64_t{kFrameWidth} * count * state.iterations());
}

FilteredPlan Plan(int32_t mode, double scale, int frame) {
  ResampleJob job = Job(mode, scale, frame, 2);
  ClipJob(job);
  const Canvas canvas = MakeCanvas(job, PixelFormat::kPacked422, true);
  return PlanFiltered(job, canvas, *FrameFilter(mode), FramePicture(job));
}

/// What PlanFiltered and MakeFixedFilters cost a frame.
void Tables(benchmark::State& state, int32_t mode, double scale) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    const FilteredPlan plan = Plan(mode, scale, frame++);
    benchmark::DoNotOptimize(MakeFixedFilters(plan.columnWeights, plan.rowWeights));
  }
}

/// The image pixel in the middle of each entry, as it is.
WeightTable OneTapEach(const WeightTable& table) {
  WeightTable one;
  for (WeightTable::Entry entry : table.entries) {
    entry.first += entry.count / 2;
    entry.count = 1;
    entry.offset = one.weights.size();
    entry.normaliser = 1.0f;
    one.entries.push_back(entry);
    one.weights.push_back(1.0f);
  }
  return one;
}

/// The whole of both passes, none of it, or one of them. A pass without taps still takes a pixel
/// for each of its results, so that the other one has all of its work: what is left of both when
/// neither has taps is the reading and turning of the view, and the writing.
void Passes(benchmark::State& state, double scale, bool alongRows, bool downColumns) {
  FilteredPlan plan = Plan(kFilterHiQual, scale, 1);
  if (!alongRows) plan.columnWeights = OneTapEach(plan.columnWeights);
  if (!downColumns) plan.rowWeights = OneTapEach(plan.rowWeights);
  const auto filters = MakeFixedFilters(plan.columnWeights, plan.rowWeights);
  if (!filters) throw std::runtime_error("the pass is not drawn in whole numbers");
  for ([[maybe_unused]] auto _ : state) DrawFilteredFixed(plan, *filters);
}

const bool kRegistered = [] {
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    benchmark::RegisterBenchmark(("kernels/" + std::string(kFilterNames[mode])).c_str(), Kernel,
                                 *FrameFilter(mode));
  }
  // What nearest point is as a kernel; the real-time path itself evaluates none.
  benchmark::RegisterBenchmark("kernels/box", Kernel, FilterSpec{KernelBox, nullptr, -0.5f, 0.5f});
  for (const int32_t mode : {kFilterCatmull, kFilterHiQual, kFilterUltraQual}) {
    for (const double scale : kScales) {
      benchmark::RegisterBenchmark(
          ("tables/" + std::string(kFilterNames[mode]) + "/" + ScaleName(scale)).c_str(), Tables,
          mode, scale);
    }
  }
  for (const double scale : {kReduced, 1 / 1.5}) {
    const auto add = [scale](const char* name, bool alongRows, bool downColumns) {
      benchmark::RegisterBenchmark((name + ScaleName(scale)).c_str(), Passes, scale, alongRows,
                                   downColumns);
    };
    add("pass/both/", true, true);
    add("pass/along rows/", true, false);
    add("pass/down columns/", false, true);
    add("pass/neither/", false, false);
  }
  return true;
}();

}  // namespace
}  // namespace kelto::bench
