// A list of views as the effect's keys.
#include "host/track/keyed_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/error.h"
#include "host/plan/default_plan.h"

namespace kelto::host {
namespace {

using testing::ElementsAre;

constexpr PixelSize kHdPhoto{1920, 1080};

RenderPlan PlanOf(std::vector<TourView> tour, const char* path = "Path: Linear") {
  RenderPlan plan = DefaultPlan("photo.jpg");
  plan.motion = MotionLaw::kSteady;
  plan.Set("path", std::string(path));
  plan.SetTour(std::move(tour));
  return plan;
}

/// The words of the keys of a velocity.
std::vector<std::string> Words(const RenderPlan& plan, const char* velocity) {
  std::vector<std::string> words;
  const RenderPlan keyed = KeyedPlan(plan, kHdPhoto);
  for (const SettingKey& key : keyed.FindSetting(velocity)->keys) {
    words.push_back(std::get<std::string>(key.value));
  }
  return words;
}

TEST(KeyedPlan, HasAKeyForEachViewAndForTheEndOfEachHold) {
  const RenderPlan keyed =
      KeyedPlan(PlanOf({{View{1}, 0.0, 1.0}, {View{4, 0.2, 0.1}, 2.0, 1.0}, {View{2}}}), kHdPhoto);
  EXPECT_TRUE(keyed.views.empty());
  EXPECT_EQ(keyed.FindSetting("size")->keys,
            (std::vector<SettingKey>{{0.0, 1.0}, {0.25, 4.0}, {0.75, 4.0}, {1.0, 2.0}}));
  EXPECT_EQ(keyed.FindSetting("position")->keys[2], (SettingKey{0.75, std::array{0.2, 0.1}}));
}

TEST(KeyedPlan, LeavesAPlanWithKeysAsItIs) {
  const RenderPlan plan = DefaultPlan("photo.jpg");
  EXPECT_EQ(KeyedPlan(plan, kHdPhoto).settings, plan.settings);
}

TEST(KeyedPlan, ShowsAPartOfThePhotoInTheFramesShape) {
  // Half the photo's width, higher than the frame's shape: the width follows from the height.
  const RenderPlan keyed = KeyedPlan(PlanOf({{PhotoRect{480, 0, 960, 1080}}}), kHdPhoto);
  EXPECT_EQ(keyed.FindSetting("size")->keys[0], (SettingKey{0.0, 1.0}));
}

TEST(KeyedPlan, EasesAtEachViewUnlessItSaysOtherwise) {
  EXPECT_THAT(Words(PlanOf({{View{1}}, {View{2}}, {View{3}}}), "invelocity"),
              ElementsAre("In: Ease In", "In: Ease In", "In: Ease In"));
  EXPECT_THAT(
      Words(PlanOf({{View{1}}, {View{2}, 0, 0, "", "Out: Hold"}, {View{3}}}), "outvelocity"),
      ElementsAre("Out: Ease Out", "Out: Hold", "Out: Ease Out"));
}

TEST(KeyedPlan, PassesViewsOfASmoothWayThatDoesNotPauseThere) {
  const auto words = [](std::vector<TourView> tour) {
    return Words(PlanOf(std::move(tour), "Path: Spline"), "invelocity");
  };
  EXPECT_THAT(words({{View{1}}, {View{2}}, {View{3}}}),
              ElementsAre("In: Ease In", "In: Linear", "In: Ease In"));
  EXPECT_THAT(words({{View{1}}, {View{2}, 1.0}, {View{3}}}),
              ElementsAre("In: Ease In", "In: Ease In", "In: Ease In", "In: Ease In"));
  EXPECT_THAT(words({{View{1}}, {View{2}, 0, 0, "In: Constant", ""}, {View{3}}}),
              ElementsAre("In: Ease In", "In: Constant", "In: Ease In"));
}

TEST(KeyedPlan, NamesThePartThatTheEffectCannotShow) {
  try {
    KeyedPlan(PlanOf({{View{1}}, {PhotoRect{-9e5, 0, 2e6, 100}}}), kHdPhoto);
    FAIL() << "is shown";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(),
                testing::StartsWith("views[1].view: -9e+05,0,2e+06,100: takes a zoom"));
  }
}

}  // namespace
}  // namespace kelto::host
