// Views over time.
#include "motion/tour.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/motion/least_rate.h"
#include "tests/motion/random_windows.h"

namespace kelto::motion {
namespace {

constexpr int kTours = 400;
constexpr int kSmoothTours = 3000;
constexpr Law kLaws[] = {Law::kSteady, Law::kFly};
constexpr Path kPaths[] = {Path::kLinear, Path::kSpline};

size_t FewViews(Random& random) { return 3 + random.Below(4); }

TEST(Tour, MeetsEveryViewAtItsTime) {
  Random random(31);
  for (int i = 0; i < kTours; ++i) {
    const Room room = random.ARoom();
    const auto arrival = static_cast<Arrival>(random.Below(2));
    const auto departure = static_cast<Departure>(random.Below(2));
    const auto stops = random.Stops(room, FewViews(random), arrival, departure);
    const Tour tour(stops, kLaws[i % 2], kPaths[i / 2 % 2], room);
    for (const Stop& stop : stops) {
      EXPECT_LT(Apart(tour.At(stop.time), stop.window), 1e-9) << "tour " << i;
      EXPECT_LT(Apart(tour.At(stop.time - 1e-13), stop.window), 1e-9) << "tour " << i;
    }
    EXPECT_EQ(tour.At(-1.0), stops.front().window);
    EXPECT_EQ(tour.At(2.0), stops.back().window);
  }
}

TEST(Tour, GoesAtOnePerceivedSpeedWhereItsViewsArePassedAtConstantSpeed) {
  Random random(32);
  for (int i = 0; i < kTours; ++i) {
    const Room room = random.ARoom();
    const auto stops =
        random.Stops(room, FewViews(random), Arrival::kConstant, Departure::kConstant);
    const Tour tour(stops, kLaws[i % 2], kPaths[i / 2 % 2], room);
    constexpr int kFrames = 500;
    double least = 1e300, most = 0.0;
    for (int frame = 1; frame <= kFrames; ++frame) {
      const double from = (frame - 1.0) / kFrames, to = static_cast<double>(frame) / kFrames;
      // Along the way, which may turn back within the frame.
      const double gone = tour.LengthAt(to) - tour.LengthAt(from);
      least = std::min(least, gone);
      most = std::max(most, gone);
    }
    EXPECT_LE(most, least * 1.01) << "tour " << i;
  }
}

TEST(Tour, CoversWhatItsWindowsShowThatItCovers) {
  Random random(36);
  for (int i = 0; i < kTours; ++i) {
    const Room room = random.ARoom();
    const auto stops = random.Stops(room, FewViews(random), static_cast<Arrival>(random.Below(3)),
                                    static_cast<Departure>(random.Below(3)));
    const Tour tour(stops, kLaws[i % 2], kPaths[i / 2 % 2], room);
    constexpr int kFrames = 2000;
    double shown = 0.0;
    Window last = tour.At(0.0);
    for (int frame = 1; frame <= kFrames; ++frame) {
      const double time = static_cast<double>(frame) / kFrames;
      const Window next = tour.At(time);
      const double step = SpeedBetween(last, next, 1.0).perceived;
      const double gone = tour.LengthAt(time) - tour.LengthAt(time - 1.0 / kFrames);
      // The way as the crow flies, or as the law goes, within a frame: no more than is gone.
      EXPECT_LE(step, gone * 1.02 + 1e-9) << "tour " << i << " frame " << frame;
      shown += step;
      last = next;
    }
    EXPECT_NEAR(shown, tour.LengthAt(1.0), 0.02 * shown) << "tour " << i;
  }
}

TEST(Tour, MeetsEveryViewThatItPassesAtConstantSpeed) {
  Random random(33);
  for (int i = 0; i < 60; ++i) {
    const Room room = random.ARoom();
    const auto stops =
        random.Stops(room, FewViews(random), Arrival::kConstant, Departure::kConstant);
    const Tour tour(stops, kLaws[i % 2], kPaths[i / 2 % 2], room);
    for (const Stop& stop : stops) {
      // The nearest of many moments, and then the nearest about it.
      double best = 0.0, nearest = 1e300, span = 1.0;
      for (int round = 0; round < 8; ++round) {
        const double centre = round == 0 ? 0.5 : best;
        for (int step = -1000; step <= 1000; ++step) {
          const double time = centre + span * step / 2000;
          const double apart = Apart(tour.At(time), stop.window);
          if (apart < nearest) nearest = apart, best = time;
        }
        span /= 100;
      }
      EXPECT_LT(nearest, 1e-9) << "tour " << i;
    }
  }
}

TEST(Tour, StaysInTheRoom) {
  Random random(34);
  for (int i = 0; i < kTours; ++i) {
    const Room room = random.ARoom();
    const auto stops = random.Stops(room, FewViews(random), static_cast<Arrival>(random.Below(3)),
                                    static_cast<Departure>(random.Below(3)));
    const Tour tour(stops, kLaws[i % 2], kPaths[i / 2 % 2], room);
    for (int frame = 0; frame <= 300; ++frame) {
      EXPECT_LE(Outside(tour.At(frame / 300.0), room), 1e-8) << "tour " << i;
    }
  }
}

/// The largest change of the speed along the way from frame to frame, of its mean.
double LargestStep(const Tour& tour, int frames) {
  double most = 0.0;
  for (int frame = 1; frame < frames; ++frame) {
    const auto at = [&](int other) { return tour.LengthAt(static_cast<double>(other) / frames); };
    most = std::max(most, std::abs(at(frame + 1) - 2 * at(frame) + at(frame - 1)));
  }
  return most / (tour.LengthAt(1.0) / frames);
}

TEST(Tour, ASmoothPathNeverJerks) {
  // At 50 frames a second, from frame to frame the perceived speed changes by 2 % of its mean at
  // the most, however sharply the way turns, unless the times of the views ask for haste: then by a
  // quarter more than any speed would have to that meets them.
  Random random(35);
  int hasty = 0;
  for (int i = 0; i < kSmoothTours; ++i) {
    const Room room = random.ARoom();
    const size_t views = FewViews(random);
    auto stops = random.Stops(room, views, Arrival::kLinear, Departure::kLinear);
    double time = 0.0;
    for (size_t k = 1; k < views; ++k) stops[k].time = time += random.Between(0.7, 1.3);
    for (Stop& stop : stops) stop.time /= time;
    const double seconds = static_cast<double>(views - 1) * (i % 2 == 0 ? 5.0 : 20.0);
    const Tour tour(stops, Law::kSteady, Path::kSpline, room, seconds);
    const double step = LargestStep(tour, static_cast<int>(seconds * 50));
    if (step <= 0.02) continue;
    ++hasty;
    std::vector<Milestone> milestones;
    for (const Stop& stop : stops) {
      milestones.push_back({stop.time * seconds, tour.LengthAt(stop.time)});
    }
    const double mean = tour.LengthAt(1.0) / seconds;
    EXPECT_LE(step, LeastRate(milestones) / mean / 50 * 5 / 4 * (1 + 1e-3)) << "tour " << i;
  }
  EXPECT_LE(hasty, kSmoothTours / 10);
}

TEST(Tour, ASmoothPathsVelocityHasNoStep) {
  // Through views that are not turned back at: halving the frames' distance halves the change.
  const std::vector<Stop> stops{{0.0, {-0.3, 0.1, 0.5}},
                                {0.3, {0.1, -0.1, 0.3}},
                                {0.6, {0.3, 0.1, 0.2}},
                                {1.0, {0.1, 0.2, 0.6}}};
  const Tour tour(stops, Law::kSteady, Path::kSpline, {});
  const auto largest = [&](int frames) {
    double most = 0.0;
    for (int frame = 1; frame < frames; ++frame) {
      const double h = 1.0 / frames, t = frame * h;
      const Window a = tour.At(t - h), b = tour.At(t), c = tour.At(t + h);
      const double x = ((c.x - b.x) - (b.x - a.x)) / b.width / h;
      const double y = ((c.y - b.y) - (b.y - a.y)) / b.width / h;
      const double zoom = (std::log(c.width / b.width) - std::log(b.width / a.width)) / h;
      most = std::max(most, std::hypot(x, y, zoom));
    }
    return most;
  };
  const double coarse = largest(1000), fine = largest(8000);
  EXPECT_LT(fine, coarse / 6);
}

TEST(Tour, EachStretchOfAStraightPathIsEasedByItself) {
  const Window a{0.0, 0.0, 1.0}, b{0.2, 0.0, 0.5};
  const Tour tour({{0.0, a, Arrival::kEase, Departure::kEase},
                   {0.5, b, Arrival::kEase, Departure::kEase},
                   {1.0, a, Arrival::kEase, Departure::kEase}},
                  Law::kSteady, Path::kLinear, {});
  EXPECT_EQ(tour.At(0.125), SteadyWay(a, b).At(0.1));
  EXPECT_EQ(tour.At(0.875), SteadyWay(b, a).At(0.9));
}

TEST(Tour, AViewThatIsHeldStaysUntilTheNextOnesTime) {
  const Window a{0.0, 0.0, 1.0}, b{0.2, 0.0, 0.5};
  for (const Path path : kPaths) {
    const Tour tour({{0.0, a, Arrival::kLinear, Departure::kHold}, {0.5, b}, {1.0, a}},
                    Law::kSteady, path, {});
    EXPECT_EQ(tour.At(0.499), a);
    EXPECT_EQ(tour.At(0.5), b);
  }
}

TEST(Tour, APauseStaysAPauseInARunOfConstantSpeed) {
  const Window a{0.0, 0.0, 1.0}, b{0.2, 0.0, 0.5};
  const auto constant = [](double time, const Window& window) {
    return Stop{time, window, Arrival::kConstant, Departure::kConstant};
  };
  for (const Path path : kPaths) {
    const Tour tour({constant(0.0, a), constant(0.4, b), constant(0.6, b), constant(1.0, a)},
                    Law::kSteady, path, {});
    EXPECT_EQ(tour.At(0.4), b);
    EXPECT_EQ(tour.At(0.5), b);
    EXPECT_EQ(tour.At(0.6), b);
    EXPECT_NE(tour.At(0.61), b);
  }
}

TEST(Tour, OfOneViewStandsStill) {
  const Window a{0.1, 0.0, 0.5};
  for (const Path path : kPaths) {
    EXPECT_EQ(Tour({{0.0, a}}, Law::kSteady, path, {}).At(0.7), a);
    EXPECT_EQ(Tour({{0.0, a}, {1.0, a}}, Law::kFly, path, {}).At(0.7), a);
  }
}

}  // namespace
}  // namespace kelto::motion
