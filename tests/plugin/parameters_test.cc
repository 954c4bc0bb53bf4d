#include "plugin/parameters.h"

#include <gtest/gtest.h>

#include "render/motion.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using hfx::ParamKind;
using test::Instance;

struct Row {
  ParamKind kind;
  const char* displayName;
  const char* key;
  const char* group;
  int32_t size;
};

const Row kPanel[] = {
    {ParamKind::List, "", "display", nullptr, 4},
    {ParamKind::Group, "Display Options", "sourcerectoptions", nullptr, 0},
    {ParamKind::Boolean, "Show Action Safe", "showactionsafe", "sourcerectoptions", 1},
    {ParamKind::Group, "Size", "sizegroup", nullptr, 0},
    {ParamKind::Number, "Zoom Factor", "size", "sizegroup", 8},
    {ParamKind::Group, "Position", "positiongroup", nullptr, 0},
    {ParamKind::Point2D, "", "position", "positiongroup", 16},
    {ParamKind::Group, "Velocity", "velocitygroup", nullptr, 0},
    {ParamKind::List, "", "invelocity", "velocitygroup", 4},
    {ParamKind::List, "", "outvelocity", "velocitygroup", 4},
    {ParamKind::Group, "Path", "pathgroup", nullptr, 0},
    {ParamKind::List, "", "path", "pathgroup", 4},
    {ParamKind::Group, "Filtering", "filtering", nullptr, 0},
    {ParamKind::List, "", "filter", "filtering", 4},
    {ParamKind::Group, "Background", "backgroundgroup", nullptr, 0},
    {ParamKind::List, "", "compositeover", "backgroundgroup", 4},
    {ParamKind::ColorRGB, "", "bgcolor", "backgroundgroup", 24},
    {ParamKind::Group, "Advanced", "advanced", nullptr, 0},
    {ParamKind::Boolean, "Source Has Square Pixels", "squarepixels", "advanced", 1},
    {ParamKind::List, "", "levels", "advanced", 4},
    {ParamKind::Group, "Cache", "cachegroup", nullptr, 0},
    {ParamKind::List, "", "cache", "cachegroup", 4},
    {ParamKind::Group, "Render Mode", "projgroup", nullptr, 0},
    {ParamKind::Boolean, "Progressive", "progressive", "projgroup", 1},
};

TEST(Parameters, FormThePanelInItsOrder) {
  const Instance instance;
  const auto parameters = hfx::ParametersOf(instance);
  ASSERT_EQ(parameters.size(), std::size(kPanel));
  for (size_t i = 0; i < parameters.size(); ++i) {
    const hfxParameter& p = *parameters[i];
    const Row& row = kPanel[i];
    EXPECT_EQ(hfx::KindOf(p), row.kind) << row.key;
    EXPECT_STREQ(p.GetKeyName(), row.key);
    EXPECT_STREQ(p.GetDisplayName(), row.displayName) << row.key;
    const hfxPGroup* group = hfx::GroupOf(p);
    EXPECT_STREQ(group ? group->GetKeyName() : nullptr, row.group) << row.key;
    EXPECT_EQ(hfx::ValueSizeOf(p), row.size) << row.key;
  }
}

void ExpectEntries(const Instance& instance, const char* key,
                   const std::vector<std::string>& wanted) {
  const auto* list = dynamic_cast<const hfxPList*>(instance.FindParameter(key));
  ASSERT_NE(list, nullptr) << key;
  EXPECT_EQ(list->GetListType(), 1);
  std::vector<std::string> entries;
  entries.reserve(wanted.size());
  for (int32_t i = 0; i < list->GetNumEntries(); ++i) entries.push_back(list->GetEntry(i));
  EXPECT_EQ(entries, wanted) << key;
}

TEST(Parameters, ListsKeepTheirEntriesInOrder) {
  const Instance i;
  ExpectEntries(i, "display", {"Display: Source", "Display: Target"});
  ExpectEntries(i, "invelocity", {"In: Linear", "In: Ease In", "In: Constant"});
  ExpectEntries(i, "outvelocity", {"Out: Linear", "Out: Ease Out", "Out: Constant", "Out: Hold"});
  ExpectEntries(i, "path", {"Path: Linear", "Path: Spline"});
  ExpectEntries(i, "compositeover", {"Background: Color", "Background: Video"});
  ExpectEntries(i, "levels", {"Source Has RGB Levels", "Source Has 601 Levels"});
}

TEST(Parameters, TheEightFiltersAndEightCacheCommandsKeepTheirOrder) {
  const Instance i;
  ExpectEntries(i, "filter",
                {"Filter: Real Time", "Filter: Triangle", "Filter: Quadratic", "Filter: Cubic",
                 "Filter: BSpline Catmull", "Filter: Gaussian", "Filter: Kelto Hi Qual",
                 "Filter: Kelto Ultra Qual"});
  ExpectEntries(i, "cache",
                {"Cache: Video Resolution", "Cache: Image Resolution", "Cache: Multi-Resolution",
                 "Free Current Cache", "Cache All: Video Resolution", "Cache All: Image Resolution",
                 "Cache All: Multi-Resolution", "Free All Caches"});
}

TEST(Parameters, GroupsAndTheZoomCarryTheirArguments) {
  const Instance i;
  const auto flag = [&](const char* key) {
    return dynamic_cast<const hfxPGroup&>(*i.FindParameter(key)).GetFlag();
  };
  for (const char* shut :
       {"sourcerectoptions", "velocitygroup", "pathgroup", "backgroundgroup", "advanced"}) {
    EXPECT_EQ(flag(shut), 0) << shut;
  }
  for (const char* open : {"sizegroup", "positiongroup", "filtering", "cachegroup", "projgroup"}) {
    EXPECT_EQ(flag(open), 1) << open;
  }
  const auto& size = dynamic_cast<const hfxPNumber&>(*i.FindParameter("size"));
  EXPECT_EQ(size.GetLower(), 0.1);
  EXPECT_EQ(size.GetUpper(), 20.0);
  EXPECT_EQ(size.GetStep(), 0.01);
}

TEST(Parameters, TheHostWritesValuesStraightIntoTheInstance) {
  Instance i;
  const int32_t filter = 6;
  const bool progressive = true;
  const double colour[3] = {0.25, 0.5, 0.75};
  i.SetKey("filter", 0.0, filter);
  i.SetKey("progressive", 0.0, progressive);
  i.SetKey("bgcolor", 0.0, colour);
  i.SetPosition(0.0, 0.1, 0.2);
  hfx::WriteBoundFields(i, 0.5);
  EXPECT_EQ(i.settings.filter, 6);
  EXPECT_TRUE(i.settings.progressive);
  EXPECT_EQ(i.settings.backgroundColor[2], 0.75);
  EXPECT_EQ(i.settings.view.centreX, 0.1);
  EXPECT_EQ(i.settings.view.centreY, 0.2);
}

TEST(ZoomInterpolator, ReadsOneWithNoKeyOrOneKey) {
  Instance i;
  double zoom = 0.0;
  EXPECT_TRUE(InterpolateZoom(i.FindParameter("size"), 0.5, &zoom, 8, 0));
  EXPECT_EQ(zoom, 1.0);
  i.SetKey("size", 0.0, 7.0);
  zoom = 0.0;
  EXPECT_TRUE(InterpolateZoom(i.FindParameter("size"), 0.5, &zoom, 8, 0));
  EXPECT_EQ(zoom, 1.0);
}

TEST(ZoomInterpolator, RefusesAnyResultPlaceButEightBytes) {
  Instance i;
  double zoom[2] = {-1.0, -1.0};
  for (const int32_t size : {0, 1, 4, 7, 9, 16, -8}) {
    EXPECT_FALSE(InterpolateZoom(i.FindParameter("size"), 0.5, zoom, size, 0)) << size;
  }
  EXPECT_EQ(zoom[0], -1.0);
  i.FindParameter("size")->SetUserData(nullptr);
  EXPECT_FALSE(InterpolateZoom(i.FindParameter("size"), 0.5, zoom, 8, 0));
}

TEST(ZoomInterpolator, ShowsKeysThatChangedBetweenRendersBeforeThatIsReported) {
  Instance i;
  const auto setZoom = [&](double zoom) {
    for (const double t : {0.0, 1.0}) i.SetKey("size", t, zoom);
  };
  const auto ask = [&] {
    double zoom = 0.0;
    EXPECT_TRUE(InterpolateZoom(i.FindParameter("size"), 0.5, &zoom, 8, 0));
    return zoom;
  };
  setZoom(2.0);
  i.BeginRender();
  EvaluateMotion(i);
  EXPECT_EQ(ask(), 2.0);
  i.EndRender();
  setZoom(5.0);
  EXPECT_EQ(ask(), 5.0);
}

TEST(ZoomInterpolator, EasesBetweenKeysAndHoldsTimesAboveOne) {
  Instance i;
  i.SetKey("size", 0.0, 1.0);
  i.SetKey("size", 1.0, 3.0);
  for (const double t : {0.0, 1.0}) i.SetVelocities(t, 1, 1);
  double zoom;
  InterpolateZoom(i.FindParameter("size"), 0.1, &zoom, 8, 0);
  EXPECT_GT(zoom, 1.0);
  EXPECT_LT(zoom, 1.15) << "eased, not linear";
  InterpolateZoom(i.FindParameter("size"), 0.5, &zoom, 8, 0);
  EXPECT_NEAR(zoom, 2.0, 1e-9);
  InterpolateZoom(i.FindParameter("size"), 9.0, &zoom, 8, 0);
  EXPECT_NEAR(zoom, 3.0, 1e-6);
  EXPECT_LT(zoom, 3.0) << "eight nines, not one";
}

}  // namespace
}  // namespace kelto
