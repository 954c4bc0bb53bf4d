// The smooth way through several windows: its shape.
#include "motion/smooth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/motion/random_windows.h"

namespace kelto::motion {
namespace {

constexpr int kSmoothPaths = 1000;
constexpr int kSteps = 60;

std::vector<Window> WindowsIn(Random& random, const Room& room) {
  std::vector<Window> windows(3 + random.Below(4));
  for (Window& window : windows) window = random.WindowIn(room);
  return windows;
}

TEST(SmoothThrough, MeetsEveryWindow) {
  Random random(21);
  for (int i = 0; i < kSmoothPaths; ++i) {
    const Room room = random.ARoom();
    const std::vector<Window> windows = WindowsIn(random, room);
    const SmoothPath path = SmoothThrough(windows, room);
    ASSERT_EQ(path.ways.size(), windows.size() - 1);
    for (size_t leg = 0; leg < path.ways.size(); ++leg) {
      EXPECT_EQ(path.ways[leg].At(0.0), windows[leg]);
      EXPECT_EQ(path.ways[leg].At(1.0), windows[leg + 1]);
    }
  }
}

TEST(SmoothThrough, StaysInTheRoom) {
  Random random(22);
  for (int i = 0; i < kSmoothPaths; ++i) {
    const Room room = random.ARoom();
    const SmoothPath path = SmoothThrough(WindowsIn(random, room), room);
    for (const SmoothWay& way : path.ways) {
      for (int step = 0; step <= kSteps; ++step) {
        EXPECT_LE(Outside(way.At(static_cast<double>(step) / kSteps), room), 1e-12) << "path " << i;
      }
    }
  }
}

TEST(SmoothThrough, NeverOvershootsTheZoom) {
  Random random(23);
  for (int i = 0; i < kSmoothPaths; ++i) {
    const Room room = random.ARoom();
    const SmoothPath path = SmoothThrough(WindowsIn(random, room), room);
    for (const SmoothWay& way : path.ways) {
      const double sign = way.At(1.0).width > way.At(0.0).width ? 1.0 : -1.0;
      double last = way.At(0.0).width;
      for (int step = 1; step <= kSteps; ++step) {
        const double width = way.At(static_cast<double>(step) / kSteps).width;
        EXPECT_GE((width - last) * sign, -1e-14) << "path " << i;
        last = width;
      }
    }
  }
}

TEST(SmoothThrough, KeepsItsDirectionAtEveryWindow) {
  Random random(24);
  constexpr double kNear = 1e-6;
  for (int i = 0; i < kSmoothPaths; ++i) {
    const Room room = random.ARoom();
    const SmoothPath path = SmoothThrough(WindowsIn(random, room), room);
    for (size_t k = 1; k < path.ways.size(); ++k) {
      if (path.straightness[k] < 0.05) continue;  // turns back, or nearly
      const Window at = path.ways[k].At(0.0);
      const Window before = path.ways[k - 1].At(1 - kNear), after = path.ways[k].At(kNear);
      const double in[3] = {(at.x - before.x) * kRho, (at.y - before.y) * kRho,
                            (at.width - before.width) / kRho};
      const double out[3] = {(after.x - at.x) * kRho, (after.y - at.y) * kRho,
                             (after.width - at.width) / kRho};
      double dot = 0, lengthIn = 0, lengthOut = 0;
      for (int axis = 0; axis < 3; ++axis) {
        dot += in[axis] * out[axis];
        lengthIn += in[axis] * in[axis];
        lengthOut += out[axis] * out[axis];
      }
      EXPECT_GT(dot / std::sqrt(lengthIn * lengthOut), 0.999) << "path " << i << " window " << k;
    }
  }
}

TEST(SmoothThrough, GoesStraightThroughWindowsInLine) {
  const std::vector<Window> windows{{0.0, 0.0, 0.4}, {0.3, 0.0, 0.4}, {0.6, 0.0, 0.4}};
  const SmoothPath path = SmoothThrough(windows, {});
  EXPECT_NEAR(path.straightness[1], 1.0, 1e-12);
  EXPECT_NEAR(path.ways[0].At(0.5).y, 0.0, 1e-12);
  EXPECT_NEAR(path.ways[0].At(0.5).width, 0.4, 1e-12);
}

}  // namespace
}  // namespace kelto::motion
