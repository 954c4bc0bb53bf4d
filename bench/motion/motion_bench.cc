// What a motion costs, by its number of keys: to be made, once a film, and to be asked, once a
// frame.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "keyframes/motion.h"

namespace kelto::bench {
namespace {

/// A way of `count` keys over a film of 1,000 frames. Every third key is passed at constant speed.
MotionKeys KeysOf(int count, int32_t pathType) {
  MotionKeys keys;
  keys.position.emplace();
  keys.zoom.emplace();
  keys.in.emplace();
  keys.out.emplace();
  keys.pathType = pathType;
  keys.totalFrames = 1000;
  for (int i = 0; i < count; ++i) {
    const double time = i / (count - 1.0);
    keys.position->push_back({time, {std::sin(i * 0.7), std::cos(i * 1.1)}});
    keys.zoom->push_back({time, 2.0 + std::sin(i * 0.3)});
    const int32_t velocity = i % 3 == 1 ? kVelocityConstant : kVelocityEase;
    keys.in->push_back({time, velocity});
    keys.out->push_back({time, velocity});
  }
  return keys;
}

void Make(benchmark::State& state, int count, int32_t pathType) {
  const MotionKeys keys = KeysOf(count, pathType);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(Motion(keys).PathTime(0.5));
}

void Ask(benchmark::State& state, int count, int32_t pathType) {
  const Motion motion(KeysOf(count, pathType));
  double t = 0.0;
  for ([[maybe_unused]] auto _ : state) {
    t = std::fmod(t + 0.618, 1.0);
    benchmark::DoNotOptimize(motion.At(t, View{}));
  }
}

const bool kRegistered = [] {
  for (const int count : {2, 100, 10000}) {
    for (const int32_t pathType : {kPathLinear, kPathSpline}) {
      const std::string path = pathType == kPathSpline ? "spline" : "linear";
      const std::string name = path + "/" + std::to_string(count) + " keys";
      benchmark::RegisterBenchmark(("motion/make/" + name).c_str(), Make, count, pathType);
      benchmark::RegisterBenchmark(("motion/ask/" + name).c_str(), Ask, count, pathType);
    }
  }
  return true;
}();

}  // namespace
}  // namespace kelto::bench
