// A motion is to the bit what its plainest form makes of the same keys.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "keyframes/motion.h"
#include "tests/keyframes/keys.h"
#include "tests/keyframes/plain_motion.h"

namespace kelto {
namespace {

/// Any keys, and now and then velocities without a position, values of no entry, and equal places.
class RandomKeys {
 public:
  explicit RandomKeys(unsigned seed) : random_(seed) {}

  test::Keys Next() {
    test::Keys keys;
    keys.pathType = Below(3);
    keys.totalFrames = Below(120);
    double x = 0.0, y = 0.0;
    for (const double time : Times()) {
      if (Below(5) > 0) x = Number(), y = Number();
      if (Below(8) > 0) keys.AddPosition(time, x, y);
      if (Below(4) > 0) keys.AddZoom(time, 0.1 + 10.0 * std::abs(Number()));
      // Runs of Constant keys are what is intricate.
      const bool constant = Below(3) == 0;
      if (Below(9) > 0) keys.in->push_back({time, constant ? 2 : Below(4)});
      if (Below(9) > 0) keys.out->push_back({time, constant ? 2 : Below(5)});
    }
    return keys;
  }
  double Number() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }

 private:
  std::vector<double> Times() {
    std::vector<double> times(static_cast<size_t>(Below(12)));
    for (double& time : times) time = std::abs(Number());
    if (!times.empty() && Below(4) > 0) times.front() = 0.0;
    if (times.size() > 1 && Below(4) > 0) times.back() = 1.0;
    // Before the effect begins there may be keys, too; the table then runs to and fro.
    if (!times.empty() && Below(10) == 0) times.front() = -0.3;
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
  }
  int32_t Below(int32_t limit) {
    return static_cast<int32_t>(random_() % static_cast<unsigned>(limit));
  }

  std::mt19937 random_;
};

TEST(PlainMotion, IsWhatTheQuickMotionMakesOfAnyKeys) {
  RandomKeys random(5);
  for (int round = 0; round < 600; ++round) {
    const test::Keys keys = random.Next();
    const Motion motion(keys);
    const std::vector<ArcEntry> table = test::PlainTable(keys);
    ASSERT_EQ(motion.Table().Entries().size(), table.size()) << round;
    for (size_t i = 0; i < table.size(); ++i) {
      ASSERT_EQ(motion.Table().Entries()[i].keyTime, table[i].keyTime) << round;
      ASSERT_EQ(motion.Table().Entries()[i].travelTime, table[i].travelTime) << round;
    }
    std::vector<double> times = {0.0, 1e-12, 0.25, 0.5, 1.0 - 1e-13, 1.0};
    for (int i = 0; i < 6; ++i) times.push_back(std::abs(random.Number()));
    for (const auto& key : *keys.out) times.push_back(key.time);
    for (const double t : times) {
      ASSERT_EQ(motion.PathTime(t), test::PlainTime(keys, t, true)) << round << " at " << t;
      ASSERT_EQ(motion.At(t, View{}), test::PlainView(keys, t)) << round << " at " << t;
    }
    ASSERT_EQ(motion.ZoomAt(7.0), test::PlainView(keys, 7.0).zoom) << round;
  }
}

}  // namespace
}  // namespace kelto
