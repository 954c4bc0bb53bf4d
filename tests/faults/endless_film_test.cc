// Hosts that count frames without end, and ways of very many keys.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

#include "plugin/parameters.h"
#include "render/motion.h"
#include "tests/faults/failing_calls.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Instance;

/// A spline path with `keys` keys, evaluated in the middle of a film of as many frames as a number
/// can count.
void EvaluateEndlessFilm(Instance& instance, int keys) {
  for (int key = 0; key < keys; ++key) {
    const double time = key / (keys - 1.0);
    instance.SetPosition(time, key % 3, -key % 2);
    instance.SetVelocities(time, kVelocityConstant, kVelocityConstant);
  }
  instance.settings.pathType = 1;
  instance.host().totalFrames = INT32_MAX;
  instance.host().currentFrame = INT32_MAX / 2;
  EvaluateMotion(instance);
}

TEST(AnEndlessFilm, TakesNeitherAllMemoryNorAllTime) {
  for (const int keys : {2, 7, 200}) {
    Instance instance;
    const auto start = std::chrono::steady_clock::now();
    EvaluateEndlessFilm(instance, keys);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(instance.motion->Table().Entries().size(), size_t{5} << 20) << keys;
    EXPECT_LT(taken.count(), 30.0) << keys;
  }
}

/// A spline through `keys` keys, with a zoom at each, over a film of 250 frames.
void SetWay(Instance& instance, int keys) {
  for (int key = 0; key < keys; ++key) {
    const double time = key / (keys - 1.0);
    instance.SetPosition(time, key % 3, -key % 2);
    instance.SetKey("size", time, 1.0 + key % 5);
    instance.SetVelocities(time, kVelocityEase, key % 2);
  }
  instance.settings.pathType = kPathSpline;
  instance.host().totalFrames = 250;
}

// Measuring the path took time of the square of the number of keys, 24 s of these.
TEST(AWayOfVeryManyKeys, IsReadInLittleTime) {
  Instance instance;
  SetWay(instance, 10000);
  instance.host().currentFrame = 10;
  const std::clock_t start = std::clock();
  EvaluateMotion(instance);
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5.0) << "processor time";
}

TEST(AMotion, TakesMemoryOnlyWhenItsKeysAreRead) {
  Instance instance;
  SetWay(instance, 100);
  instance.BeginRender();
  EvaluateMotion(instance);
  hfxParameter* size = instance.FindParameter("size");
  double zoom = 0.0;
  const test::FailNth counted(test::FailingCall::kAllocation, 0);
  for (int32_t frame = 0; frame < 250; ++frame) {
    instance.host().currentFrame = frame;
    InterpolateZoom(size, frame / 249.0, &zoom, sizeof zoom, 0);
    EvaluateMotion(instance);
  }
  EXPECT_EQ(counted.Count(), 0);
}

}  // namespace
}  // namespace kelto
