// Hosts that count frames without end.
#include <gtest/gtest.h>

#include <chrono>

#include "render/motion.h"
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
    instance.SetVelocities(time, VelocityConstant, VelocityConstant);
  }
  instance.pathType = 1;
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
    EXPECT_LT(instance.motionTable.size(), size_t{5} << 20) << keys;
    EXPECT_LT(taken.count(), 30.0) << keys;
  }
}

}  // namespace
}  // namespace kelto
