// The length gone over time on a smooth way.
#include "motion/pace.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/motion/least_rate.h"
#include "tests/motion/random_windows.h"

namespace kelto::motion {
namespace {

std::vector<Milestone> RandomMilestones(Random& random, bool turning) {
  std::vector<Milestone> milestones{{0.0, 0.0}};
  for (size_t i = 2 + random.Below(4); i > 0; --i) {
    const Milestone& last = milestones.back();
    milestones.push_back({last.time + random.Between(0.2, 2.0),
                          last.length + std::exp(random.Between(-2.0, 2.0)),
                          turning ? random.Between(0.0, 1.0) : 1.0});
  }
  return milestones;
}

/// The largest change of speed per unit of time, between `steps` moments.
double LargestRate(const Pace& pace, double end, int steps) {
  const double h = end / steps;
  double most = 0.0;
  for (int i = 1; i < steps; ++i) {
    const double change = pace.At((i + 1) * h) - 2 * pace.At(i * h) + pace.At((i - 1) * h);
    most = std::max(most, std::abs(change) / (h * h));
  }
  return most;
}

double MeanOf(const std::vector<Milestone>& milestones) {
  return milestones.back().length / milestones.back().time;
}

TEST(Pace, MeetsItsMilestonesAndNeverGoesBack) {
  Random random(41);
  for (int i = 0; i < 1000; ++i) {
    const auto milestones = RandomMilestones(random, i % 2 == 0);
    const Pace pace(milestones, 0.5);
    for (const Milestone& one : milestones) {
      EXPECT_NEAR(pace.At(one.time), one.length, 1e-12 * milestones.back().length);
    }
    double last = 0.0;
    for (int step = 0; step <= 300; ++step) {
      const double length = pace.At(milestones.back().time * step / 300);
      EXPECT_GE(length, last) << "milestones " << i;
      last = length;
    }
  }
}

TEST(Pace, ChangesSpeedLittleMoreThanTheMilestonesAskFor) {
  Random random(42);
  for (int i = 0; i < 150; ++i) {
    const auto milestones = RandomMilestones(random, false);
    const double rate = LargestRate(Pace(milestones, 0.0), milestones.back().time, 4000);
    EXPECT_LE(rate, LeastRate(milestones) * 5 / 4 * (1 + 1e-4)) << "milestones " << i;
  }
}

TEST(Pace, IsEvenWhereTheMilestonesAre) {
  const Pace pace({{0.0, 0.0}, {1.0, 2.0}, {3.0, 6.0}, {4.0, 8.0}}, 0.9);
  for (int i = 0; i <= 40; ++i) EXPECT_NEAR(pace.At(0.1 * i), 0.2 * i, 1e-6);
}

TEST(Pace, StopsWhereTheWayTurnsBackAsFarAsCalmnessAllows) {
  const std::vector<Milestone> milestones{{0.0, 0.0}, {1.0, 1.0, 0.0}, {2.0, 2.0}};
  const auto speedAtTurn = [&](double calm) {
    const Pace pace(milestones, calm);
    return (pace.At(1.0 + 1e-6) - pace.At(1.0 - 1e-6)) / 2e-6;
  };
  EXPECT_NEAR(speedAtTurn(10.0), 0.0, 1e-4);
  EXPECT_NEAR(speedAtTurn(0.0), 1.0, 1e-4);
  const double between = speedAtTurn(1.0);
  EXPECT_GT(between, 0.1);
  EXPECT_LT(between, 0.9);
}

TEST(Pace, KeepsToItsCalmnessUnlessTheMilestonesAskForMore) {
  Random random(43);
  for (int i = 0; i < 150; ++i) {
    const auto milestones = RandomMilestones(random, true);
    const double calm = random.Between(0.0, 5.0);
    const double rate = LargestRate(Pace(milestones, calm), milestones.back().time, 4000);
    const double allowed = std::max(calm * MeanOf(milestones), LeastRate(milestones) * 5 / 4);
    EXPECT_LE(rate, allowed * (1 + 1e-4)) << "milestones " << i;
  }
}

}  // namespace
}  // namespace kelto::motion
