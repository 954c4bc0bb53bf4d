// The engine alone: every filter and scale, tables included; tables; the real-time path;
// background.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>

#include "bench/engine/view.h"
#include "platform/ipl.h"
#include "resample/filtered.h"
#include "resample/fixed_weights.h"
#include "resample/geometry.h"
#include "resample/resample.h"
#include "resample/target.h"

namespace kelto::bench {
namespace {

const char* const kFilterNames[] = {"realtime", "triangle", "quadratic", "cubic",
                                    "catmull",  "gaussian", "hiqual",    "ultra"};
constexpr double kScales[] = {6, 3.125, 1.5, 1 / 1.5, 1.0 / 6};

/// One picture and one frame for all benchmarks. The picture lies where the effect keeps its own.
class Pictures {
 public:
  Pictures() {
    header_ = iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "RGBA", "BGRA", IPL_DATA_ORDER_PIXEL,
                                   IPL_ORIGIN_TL, IPL_ALIGN_DWORD, kImageWidth, kImageHeight,
                                   nullptr, nullptr, nullptr, nullptr);
    iplAllocateImage(header_, 0, 0);
    const std::vector<uint8_t> noise = NoisyBytes(size_t{4} * kImageWidth * kImageHeight);
    std::memcpy(header_->imageData, noise.data(), noise.size());
  }
  uint8_t* Image() const { return static_cast<uint8_t*>(static_cast<void*>(header_->imageData)); }
  std::vector<uint8_t> frame = NoisyBytes(size_t{4} * kFrameWidth * kFrameHeight);

 private:
  IplImage* header_;  // as long as the process lives
};

Pictures& Shared() {
  static Pictures pictures;
  return pictures;
}

ResampleJob Job(int32_t mode, double scale, int frame, int32_t bytesPerPixel) {
  ResampleJob job;
  job.source = {Shared().Image(), kImageWidth, kImageHeight, ptrdiff_t{4} * kImageWidth};
  job.dest = {Shared().frame.data(), kFrameWidth, kFrameHeight,
              ptrdiff_t{bytesPerPixel} * kFrameWidth};
  job.sourceRect = SourceRect(MovingView(scale, frame));
  job.destRect = {0.5f, 0.5f, kFrameWidth - 0.5f, kFrameHeight - 0.5f};
  job.filterMode = mode;
  job.chroma = {2, 1};
  return job;
}

void Frame(benchmark::State& state, int32_t mode, double scale, Target target) {
  Shared();
  SetTarget(target);
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) ResampleTo422(Job(mode, scale, frame++, 2));
  SetTarget(AvailableTargets().back());
}

/// Smaller frames of the same view scale: how time grows with output pixels.
void Growth(benchmark::State& state, int32_t width, int32_t height) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(FilterHiQual, 3.125, frame++, 2);
    job.dest.width = width;
    job.dest.height = height;
    const auto across = static_cast<float>(width), down = static_cast<float>(height);
    job.sourceRect.right = job.sourceRect.left + 3.125f * across - 1.0f;
    job.sourceRect.bottom = job.sourceRect.top + 3.125f * down - 1.0f;
    job.destRect = {0.5f, 0.5f, across - 0.5f, down - 0.5f};
    ResampleTo422(job);
  }
}

void Reduction(benchmark::State& state) {
  Shared();
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(FilterHiQual, 1, 0, 4);
    job.dest.width = 1620;
    job.sourceRect = {0.5f, 0.5f, kImageWidth - 0.5f, kImageHeight - 0.5f};
    job.destRect = {0.0f, 0.0f, 1620 - 0.5f, kFrameHeight - 0.5f};
    ReduceImage(job);
  }
}

/// What PlanFiltered and MakeFixedFilters cost a frame.
void Tables(benchmark::State& state, int32_t mode, double scale) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(mode, scale, frame++, 2);
    ClipJob(job);
    const Canvas canvas = MakeCanvas(job, PixelFormat::Packed422, true);
    const FilteredPlan plan = PlanFiltered(job, canvas, *FrameFilter(mode), FramePicture(job));
    benchmark::DoNotOptimize(MakeFixedFilters(plan.columnWeights, plan.rowWeights));
  }
}

void Background422(benchmark::State& state) {
  Shared();
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(FilterRealTime, 1, 0, 2);
    job.destRect = {kFrameWidth + 9.5f, 0.5f, 2 * kFrameWidth - 0.5f, kFrameHeight - 0.5f};
    ResampleTo422(job);
  }
}

std::string ScaleName(double scale) {
  char name[32];
  std::snprintf(name, sizeof(name), scale < 1 ? "1/%g" : "%g", scale < 1 ? 1 / scale : scale);
  return name;
}

const bool kRegistered = [] {
  for (int32_t mode = FilterRealTime; mode <= FilterUltraQual; ++mode) {
    for (const double scale : kScales) {
      benchmark::RegisterBenchmark(
          ("kelto/" + std::string(kFilterNames[mode]) + "/" + ScaleName(scale)).c_str(), Frame,
          mode, scale, AvailableTargets().back());
    }
  }
  for (const Target target : AvailableTargets()) {
    benchmark::RegisterBenchmark(("kelto_on/" + std::string(TargetName(target)) + "/3.125").c_str(),
                                 Frame, static_cast<int32_t>(FilterHiQual), 3.125, target);
  }
  for (const int32_t mode : {FilterCatmull, FilterHiQual, FilterUltraQual}) {
    for (const double scale : kScales) {
      benchmark::RegisterBenchmark(
          ("tables/" + std::string(kFilterNames[mode]) + "/" + ScaleName(scale)).c_str(), Tables,
          mode, scale);
    }
  }
  for (const int32_t quarters : {1, 2, 3, 4}) {
    const int32_t width = 480 * quarters, height = 270 * quarters;
    benchmark::RegisterBenchmark(
        ("growth/" + std::to_string(width) + "x" + std::to_string(height)).c_str(), Growth, width,
        height);
  }
  benchmark::RegisterBenchmark("kelto/reduction/24MP to 1620x1080", Reduction);
  benchmark::RegisterBenchmark("kelto/background", Background422);
  return true;
}();

}  // namespace
}  // namespace kelto::bench
