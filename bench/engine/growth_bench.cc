// How the engine's time grows with output pixels and with taps, all else the same.
#include <benchmark/benchmark.h>

#include "bench/engine/jobs.h"
#include "resample/filtered.h"
#include "resample/geometry.h"
#include "resample/resample.h"

namespace kelto::bench {
namespace {

constexpr double kScale = 3.125;

/// Smaller frames of the same view scale.
void Pixels(benchmark::State& state, int32_t width, int32_t height) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(kFilterHiQual, kScale, frame++, 2);
    job.dest.width = width;
    job.dest.height = height;
    const auto across = static_cast<float>(width), down = static_cast<float>(height);
    const auto scale = static_cast<float>(kScale);
    job.sourceRect.right = job.sourceRect.left + scale * across - 1.0f;
    job.sourceRect.bottom = job.sourceRect.top + scale * down - 1.0f;
    job.destRect = {0.5f, 0.5f, across - 0.5f, down - 0.5f};
    ResampleTo422(job);
  }
}

FilterSpec Lobes(const double* lobes) {
  const auto reach = static_cast<float>(*lobes);
  return {KernelSinc, lobes, -reach, reach};
}

/// One kernel with more and more lobes, tables included. Five are Hi Qual's, 16 Ultra Qual's.
void Taps(benchmark::State& state, double lobes) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(kFilterHiQual, kScale, frame++, 2);
    ClipJob(job);
    const Canvas canvas = MakeCanvas(job, PixelFormat::kPacked422, true);
    DrawFiltered(PlanFiltered(job, canvas, Lobes(&lobes), FramePicture(job)));
  }
}

const bool kRegistered = [] {
  for (const int32_t quarters : {1, 2, 3, 4}) {
    const int32_t width = 480 * quarters, height = 270 * quarters;
    benchmark::RegisterBenchmark(
        ("growth/" + std::to_string(width) + "x" + std::to_string(height)).c_str(), Pixels, width,
        height);
  }
  for (const double lobes : {1.0, 2.0, 3.0, 5.0, 8.0, 12.0, 16.0}) {
    const TapRange taps = AxisTapRange(Lobes(&lobes), static_cast<float>(kScale));
    benchmark::RegisterBenchmark(
        ("growth/" + std::to_string(taps.hi - taps.lo + 1) + " taps").c_str(), Taps, lobes);
  }
  return true;
}();

}  // namespace
}  // namespace kelto::bench
