// The deep engine: 16 bits and float, opaque and transparent, tables included; every target.
#include <benchmark/benchmark.h>

#include <cstring>
#include <map>
#include <utility>

#include "bench/engine/jobs.h"
#include "deep/engine.h"
#include "targets/target.h"

namespace kelto::bench {
namespace {

/// The picture that the others draw, deep. Of float samples 0.125 .. 0.5, finite whatever the
/// noise.
DeepPicture MakeDeep(DeepSample sample, bool hasAlpha) {
  DeepPicture picture(kImageWidth, kImageHeight, sample, hasAlpha);
  const size_t row = PixelBytes(sample) * kImageWidth;
  const std::vector<uint8_t> noise = NoisyBytes(row * 64);
  for (int32_t y = 0; y < kImageHeight; ++y) {
    uint8_t* const to = picture.view().Row<uint8_t>(y);
    std::memcpy(to, noise.data() + row * static_cast<size_t>(y % 64), row);
    if (sample != DeepSample::kFloat32) continue;
    for (size_t at = 3; at < row; at += 4) to[at] = 0x3E;
  }
  return picture;
}

const DeepPicture& SharedDeep(DeepSample sample, bool hasAlpha) {
  static std::map<std::pair<DeepSample, bool>, DeepPicture> all;
  const auto found = all.find({sample, hasAlpha});
  if (found != all.end()) return found->second;
  return all.emplace(std::pair(sample, hasAlpha), MakeDeep(sample, hasAlpha)).first->second;
}

void DeepFrame(benchmark::State& state, DeepSample sample, bool hasAlpha, double scale,
               bool linearLight, Target target) {
  const DeepPicture& picture = SharedDeep(sample, hasAlpha);
  DeepPicture frame(kFrameWidth, kFrameHeight, sample, true);
  SetTarget(target);
  int at = 0;
  for ([[maybe_unused]] auto _ : state) {
    DeepJob job;
    job.frame = {kFrameWidth, kFrameHeight};
    job.sourceRect = SourceRect(MovingView(scale, at++));
    job.targetRect = {0.5f, 0.5f, kFrameWidth - 0.5f, kFrameHeight - 0.5f};
    job.linearLight = linearLight;
    RenderDeep(job, picture.view(), frame.view());
  }
  SetTarget(AvailableTargets().back());
}

const bool kDeepFramesRegistered = [] {
  const auto add = [](const std::string& name, DeepSample sample, bool hasAlpha, double scale,
                      bool linearLight, Target target) {
    benchmark::RegisterBenchmark(name.c_str(), DeepFrame, sample, hasAlpha, scale, linearLight,
                                 target);
  };
  const Target best = AvailableTargets().back();
  for (const double scale : {3.125, 1 / 1.5}) {
    const std::string at = "/hiqual/" + ScaleName(scale);
    add("deep/16 bits" + at, DeepSample::kUnsigned16, false, scale, false, best);
    add("deep/16 bits, alpha" + at, DeepSample::kUnsigned16, true, scale, false, best);
    add("deep/float" + at, DeepSample::kFloat32, false, scale, false, best);
    add("deep/float, alpha" + at, DeepSample::kFloat32, true, scale, false, best);
    add("deep/16 bits, linear light" + at, DeepSample::kUnsigned16, false, scale, true, best);
  }
  for (const Target target : AvailableTargets()) {
    if (target == Target::kScalar) continue;  // it is an oracle, and takes seconds
    add("deep_on/" + std::string(TargetName(target)) + "/3.125", DeepSample::kUnsigned16, true,
        3.125, false, target);
  }
  return true;
}();

}  // namespace
}  // namespace kelto::bench
