// The effect's words of velocity: the host eases as the module does.
#include "motion/easing.h"

#include <gtest/gtest.h>

#include "keyframes/motion_keys.h"

namespace kelto::motion {
namespace {

constexpr Departure kDepartures[] = {Departure::kLinear, Departure::kEase, Departure::kConstant};
constexpr Arrival kArrivals[] = {Arrival::kLinear, Arrival::kEase, Arrival::kConstant};

TEST(Eased, PassesTheShouldersOfTheEffectsCurve) {
  EXPECT_DOUBLE_EQ(Eased(Departure::kEase, Arrival::kEase, 0.25), 0.1);
  EXPECT_DOUBLE_EQ(Eased(Departure::kEase, Arrival::kEase, 0.5), 0.5);
  EXPECT_DOUBLE_EQ(Eased(Departure::kLinear, Arrival::kEase, 0.75), 0.9);
  EXPECT_DOUBLE_EQ(Eased(Departure::kLinear, Arrival::kConstant, 0.3), 0.3);
  EXPECT_DOUBLE_EQ(Eased(Departure::kHold, Arrival::kEase, 0.9), 0.0);
}

TEST(Eased, HasTheValuesOfTheModulesLists) {
  EXPECT_EQ(static_cast<int>(Departure::kEase), kVelocityEase);
  EXPECT_EQ(static_cast<int>(Departure::kConstant), kVelocityConstant);
  EXPECT_EQ(static_cast<int>(Departure::kHold), kVelocityHold);
  EXPECT_EQ(static_cast<int>(Arrival::kConstant), kVelocityConstant);
}

TEST(Eased, NeverGoesBackwards) {
  for (const Departure departure : kDepartures) {
    for (const Arrival arrival : kArrivals) {
      double last = 0.0;
      for (int i = 0; i <= 1000; ++i) {
        const double eased = Eased(departure, arrival, i / 1000.0);
        EXPECT_GE(eased, last) << i;
        last = eased;
      }
      EXPECT_EQ(last, 1.0);
    }
  }
}

}  // namespace
}  // namespace kelto::motion
