// Views with the times that they take.
#include "host/plan/tour.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelto::host {
namespace {

using testing::ElementsAre;

TEST(Tour, TakesItsHoldsAndWays) {
  const std::vector<TourView> tour{{View{1}, 1.0, 3.0}, {View{4}, 2.0, 0.0}, {View{2}}};
  EXPECT_TRUE(HasTimes(tour));
  EXPECT_DOUBLE_EQ(SecondsOf(tour), 1 + 3 + 2 + 2) << "two for the way of which nothing is said";
  EXPECT_THAT(TimesOf(tour), ElementsAre(TourTime{0, 0.0}, TourTime{0, 1 / 8.0}, TourTime{1, 0.5},
                                         TourTime{1, 6 / 8.0}, TourTime{2, 1.0}));
}

TEST(Tour, WithoutTimesIsSpreadEvenly) {
  const std::vector<TourView> tour{{View{1}}, {View{2}}, {View{3}}, {View{4}}};
  EXPECT_FALSE(HasTimes(tour));
  EXPECT_THAT(TimesOf(tour), ElementsAre(TourTime{0, 0.0}, TourTime{1, 1 / 3.0},
                                         TourTime{2, 2 / 3.0}, TourTime{3, 1.0}));
}

TEST(Tour, EndsAtTheEndOfItsLastHold) {
  EXPECT_THAT(TimesOf({{View{1}, 0.0, 1.0}, {View{2}, 3.0}}),
              ElementsAre(TourTime{0, 0.0}, TourTime{1, 0.25}, TourTime{1, 1.0}));
}

TEST(Tour, OfOneViewStandsStill) {
  for (const double hold : {0.0, 3.0}) {
    const std::vector<TourView> tour{{View{2}, hold}};
    EXPECT_EQ(SecondsOf(tour), hold);
    EXPECT_THAT(TimesOf(tour), ElementsAre(TourTime{0, 0.0}, TourTime{0, 1.0}));
  }
}

TEST(Tour, HasRisingTimesHoweverShortAHoldIs) {
  const std::vector<TourTime> times =
      TimesOf({{View{1}, 0.0, kLongestTime}, {View{2}, 1e-200}, {View{3}}});
  for (size_t i = 1; i < times.size(); ++i) EXPECT_GT(times[i].time, times[i - 1].time);
}

}  // namespace
}  // namespace kelto::host
