// The engine alone: every filter and scale, tables included; every target; the real-time path;
// background.
#include <benchmark/benchmark.h>

#include "bench/engine/jobs.h"
#include "resample/resample.h"
#include "targets/target.h"

namespace kelto::bench {
namespace {

void Frame(benchmark::State& state, int32_t mode, double scale, Target target) {
  Shared();
  SetTarget(target);
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) ResampleTo422(Job(mode, scale, frame++, 2));
  SetTarget(AvailableTargets().back());
}

void FourChannels(benchmark::State& state) {
  Shared();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) ResampleTo4Byte(Job(kFilterHiQual, 3.125, frame++, 4));
}

void Reduction(benchmark::State& state) {
  Shared();
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(kFilterHiQual, 1, 0, 4);
    job.dest.width = 1620;
    job.sourceRect = {0.5f, 0.5f, kImageWidth - 0.5f, kImageHeight - 0.5f};
    job.destRect = {0.0f, 0.0f, 1620 - 0.5f, kFrameHeight - 0.5f};
    ReduceImage(job);
  }
}

void Background422(benchmark::State& state) {
  Shared();
  for ([[maybe_unused]] auto _ : state) {
    ResampleJob job = Job(kFilterRealTime, 1, 0, 2);
    job.destRect = {kFrameWidth + 9.5f, 0.5f, 2 * kFrameWidth - 0.5f, kFrameHeight - 0.5f};
    ResampleTo422(job);
  }
}

const bool kRegistered = [] {
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    for (const double scale : kScales) {
      benchmark::RegisterBenchmark(
          ("kelto/" + std::string(kFilterNames[mode]) + "/" + ScaleName(scale)).c_str(), Frame,
          mode, scale, AvailableTargets().back());
    }
  }
  // The whole picture within the frame: the weights at its edges differ from scale to scale.
  for (const double scale : {9.745, 10.67, 12.041, 12.411, 12.6}) {
    benchmark::RegisterBenchmark(("edges/ultra/" + ScaleName(scale)).c_str(), Frame,
                                 static_cast<int32_t>(kFilterUltraQual), scale,
                                 AvailableTargets().back());
  }
  for (const Target target : AvailableTargets()) {
    benchmark::RegisterBenchmark(("kelto_on/" + std::string(TargetName(target)) + "/3.125").c_str(),
                                 Frame, static_cast<int32_t>(kFilterHiQual), 3.125, target);
  }
  benchmark::RegisterBenchmark("kelto/four channels/hiqual/3.125", FourChannels);
  benchmark::RegisterBenchmark("kelto/reduction/24MP to 1620x1080", Reduction);
  benchmark::RegisterBenchmark("kelto/background", Background422);
  return true;
}();

}  // namespace
}  // namespace kelto::bench
