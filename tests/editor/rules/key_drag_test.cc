#include "editor/rules/key_drag.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelto::editor {
namespace {

using Places = std::vector<size_t>;
const std::vector<double> kTimes = {0.0, 0.2, 0.5, 0.6, 1.0};

TEST(KeysMoved, MovesTheSelectedOnes) {
  EXPECT_EQ(KeysMoved(kTimes, Places{1}, 0.125, 0.01),
            (std::vector<double>{0.0, 0.325, 0.5, 0.6, 1.0}));
  EXPECT_EQ(KeysMoved(kTimes, Places{}, 0.125, 0.01), kTimes);
}

TEST(KeysMoved, KeepsClearOfOthers) {
  EXPECT_NEAR(KeysMoved(kTimes, Places{1}, 0.9, 0.01)[1], 0.49, 1e-12);
  EXPECT_NEAR(KeysMoved(kTimes, Places{1}, -0.9, 0.01)[1], 0.01, 1e-12);
}

TEST(KeysMoved, KeepsSelectedOnesTogether) {
  const std::vector<double> moved = KeysMoved(kTimes, Places{1, 2}, 0.5, 0.01);
  EXPECT_NEAR(moved[2], 0.59, 1e-12);
  EXPECT_NEAR(moved[1], 0.29, 1e-12);
}

TEST(KeysMoved, StaysWithinTheFilm) {
  const Places all = {0, 1, 2, 3, 4};
  EXPECT_EQ(KeysMoved(kTimes, all, 0.5, 0.01), kTimes);
  EXPECT_NEAR(KeysMoved(kTimes, Places{4}, 0.5, 0.01)[4], 1.0, 1e-12);
}

TEST(KeysMoved, LeavesKeysOfATrimmedFilmWhereTheyAre) {
  const std::vector<double> outside = {-0.5, 0.5, 1.5};
  EXPECT_EQ(KeysMoved(outside, Places{0}, -0.1, 0.01), outside);
  EXPECT_EQ(KeysMoved(outside, Places{2}, 0.1, 0.01), outside);
}

/// The key that is added at this time, which must be in its place.
host::SettingKey Added(std::vector<host::SettingKey> keys, double time) {
  const size_t place = AddKey(keys, time);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end(),
                             [](const auto& a, const auto& b) { return a.time < b.time; }));
  return keys.at(place);
}

TEST(AddKey, LiesOnTheWayFromOneKeyToTheNext) {
  using Point = std::array<double, 2>;
  const std::vector<host::SettingKey> zooms = {{0.25, 1.0}, {0.75, 3.0}};
  EXPECT_EQ(Added(zooms, 0.375), (host::SettingKey{0.375, 1.5}));
  EXPECT_EQ(Added(zooms, 0.125), (host::SettingKey{0.125, 1.0}));
  EXPECT_EQ(Added(zooms, 0.875), (host::SettingKey{0.875, 3.0}));
  const std::vector<host::SettingKey> places = {{0.0, Point{-4.0, 8.0}}, {1.0, Point{4.0, 0.0}}};
  EXPECT_EQ(Added(places, 0.25), (host::SettingKey{0.25, Point{-2.0, 6.0}}));
}

TEST(AddKey, IsTheOneBeforeWhereNothingLiesBetween) {
  const std::vector<host::SettingKey> words = {{0.0, std::string("In: Linear")},
                                               {1.0, std::string("In: Ease In")}};
  EXPECT_EQ(Added(words, 0.5), (host::SettingKey{0.5, std::string("In: Linear")}));
}

}  // namespace
}  // namespace kelto::editor
