#include "host/plan/render_plan.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

TEST(RenderPlan, HasOneSettingForAParameter) {
  RenderPlan plan;
  EXPECT_EQ(plan.FindSetting("filter"), nullptr);
  plan.Set("filter", std::string("Filter: Cubic"));
  plan.Set("filter", std::string("Filter: Gaussian"));
  ASSERT_EQ(plan.settings.size(), 1u);
  EXPECT_EQ(*plan.FindSetting("filter")->value, SettingValue(std::string("Filter: Gaussian")));
}

TEST(RenderPlan, AValueForTheWholeFilmTakesTheKeysAway) {
  RenderPlan plan;
  plan.SettingOf("size").keys = {{0.0, 1.0}, {1.0, 2.0}};
  plan.SettingOf("size").activeKey = 1;
  plan.Set("size", 1.5);
  EXPECT_EQ(plan.SettingOf("size"), (Setting{"size", 1.5, {}, -1}));
}

TEST(RenderPlan, ViewsBecomeKeysOfFourParameters) {
  RenderPlan plan;
  const ViewKey keys[] = {{0.0, {1.0, 0.0, 0.1}, "In: Linear", "Out: Hold"},
                          {0.5, {2.0, 0.2, 0.3}, "In: Ease In", "Out: Linear"}};
  plan.SetViews(keys);
  EXPECT_EQ(plan.SettingOf("size").keys[1], (SettingKey{0.5, 2.0}));
  EXPECT_EQ(plan.SettingOf("position").keys[1], (SettingKey{0.5, std::array{0.2, 0.3}}));
  EXPECT_EQ(plan.SettingOf("invelocity").keys[1], (SettingKey{0.5, std::string("In: Ease In")}));
  EXPECT_EQ(plan.SettingOf("outvelocity").keys[0], (SettingKey{0.0, std::string("Out: Hold")}));
  EXPECT_EQ(plan.settings.size(), 4u);
}

TEST(RenderPlan, HasEitherAListOfViewsOrKeys) {
  RenderPlan plan;
  plan.Set("filter", std::string("Filter: Cubic"));
  const ViewKey keys[] = {{0.0, {}, "In: Linear", "Out: Linear"}};
  plan.SetViews(keys);
  plan.SetTour({{View{2.0}}});
  ASSERT_EQ(plan.settings.size(), 1u);
  EXPECT_EQ(plan.settings[0].parameter, "filter");
  plan.SetViews(keys);
  EXPECT_TRUE(plan.views.empty());
  EXPECT_EQ(plan.settings.size(), 5u);
}

TEST(RenderPlan, AVelocityIsThatOfEveryViewOrKey) {
  RenderPlan plan;
  plan.SetTour({{View{1.0}}, {View{2.0}, 0.0, 0.0, "In: Constant", ""}});
  plan.SetVelocity("invelocity", "In: Linear");
  for (const TourView& view : plan.views) EXPECT_EQ(view.arrival, "In: Linear");
  EXPECT_EQ(plan.views[0].departure, "");
  EXPECT_TRUE(plan.settings.empty());
  plan.views.clear();
  plan.SettingOf("size").keys = {{0.0, 1.0}, {1.0, 2.0}};
  plan.SetVelocity("outvelocity", "Out: Hold");
  EXPECT_EQ(
      plan.FindSetting("outvelocity")->keys,
      (std::vector<SettingKey>{{0.0, std::string("Out: Hold")}, {1.0, std::string("Out: Hold")}}));
}

}  // namespace
}  // namespace kelto::host
