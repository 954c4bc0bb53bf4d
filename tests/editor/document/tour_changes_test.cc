// Stops and their times, changed.
#include "editor/document/tour_changes.h"

#include <gtest/gtest.h>

#include "host/base/error.h"
#include "tests/editor/document/samples.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;

constexpr PixelSize kPhoto{1600, 1200};

std::vector<PhotoRect> Parts(const Document& document) { return PartsOf(PlanOf(document), kPhoto); }

std::vector<std::pair<double, double>> Times(const Document& document) {
  std::vector<std::pair<double, double>> times;
  for (const host::TourView& one : TimedTour(PlanOf(document)))
    times.emplace_back(one.hold, one.go);
  return times;
}

using Pairs = std::vector<std::pair<double, double>>;

TEST(TourChanges, AMovedViewIsAllThatChangesInTheText) {
  const Sample sample;
  std::string expected = kHandMade;
  expected.replace(expected.find("400,300,800,450"), 15, "410.5,300,800,450");
  EXPECT_EQ(WithPart(sample.Opened(), 1, {410.5, 300, 800, 450}).text, expected);
}

TEST(TourChanges, AStopComesWithTimesOfItsOwn) {
  const Sample sample;
  const Document document = WithStopAfter(sample.Opened(), 0, {200, 100, 400, 225});
  ASSERT_EQ(Parts(document).size(), 4u);
  EXPECT_NEAR(Parts(document)[1].x, 200, 1e-6);
  EXPECT_EQ(Times(document), (Pairs{{1, 2}, {0, 2}, {0.5, 3}, {1, 0}}));
  EXPECT_EQ(PlanOf(document).frames, 238);
}

TEST(TourChanges, AStopThatGoesLeavesTheFilmAsLong) {
  const Sample sample;
  EXPECT_EQ(Times(WithoutStop(sample.Opened(), 1)), (Pairs{{1, 5.5}, {1, 0}}));
  EXPECT_EQ(Times(WithoutStop(sample.Opened(), 0)), (Pairs{{3.5, 3}, {1, 0}}));
  EXPECT_EQ(Times(WithoutStop(sample.Opened(), 2)), (Pairs{{1, 2}, {4.5, 0}}));
}

TEST(TourChanges, TheLastViewCannotGo) {
  const Sample sample;
  const Document one = WithoutStop(WithoutStop(sample.Opened(), 0), 0);
  EXPECT_THROW(WithoutStop(one, 0), host::Error);
}

TEST(TourChanges, TimesSettleTheFilmsLength) {
  const Sample sample;
  const Document document = WithTimes(sample.Opened(), {{0, 1}, {2, 1}, {0, 9}});
  EXPECT_EQ(PlanOf(document).frames, 100);
  EXPECT_EQ(Times(document), (Pairs{{0, 1}, {2, 1}, {0, 0}}));
}

TEST(TourChanges, ViewsWithoutTimesTakeTurnsEvenly) {
  const Sample sample(
      "{\"image\": \"p.jpg\", \"views\": [{\"view\": \"1\"}, {\"view\": \"2\"}, {\"view\": \"1\"}]}");
  EXPECT_EQ(Times(sample.Opened()), (Pairs{{0, 2.5}, {0, 2.5}, {0, 0}}));
}

TEST(TourChanges, EndsSwapAndToursReverse) {
  const Sample sample;
  const std::vector<PhotoRect> before = Parts(sample.Opened());
  const std::vector<PhotoRect> swapped = Parts(WithEndsSwapped(sample.Opened()));
  EXPECT_EQ(swapped, (std::vector<PhotoRect>{before[2], before[1], before[0]}));
  const Document reversed = WithTourReversed(sample.Opened());
  EXPECT_EQ(Parts(reversed), (std::vector<PhotoRect>{before[2], before[1], before[0]}));
  EXPECT_EQ(Times(reversed), (Pairs{{1, 3}, {0.5, 2}, {1, 0}}));
}

TEST(TourChanges, AMoveByNameTakesTheFilmsLength) {
  const Sample sample;
  const Document document = WithMove(sample.Opened(), kPhoto, "in");
  const std::vector<PhotoRect> parts = Parts(document);
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_GT(parts[0].width, parts[1].width);
  EXPECT_EQ(PlanOf(document).frames, PlanOf(sample.Opened()).frames);
}

TEST(TourChanges, EasingIsOfAWay) {
  const Sample sample;
  const host::RenderPlan plan = PlanOf(WithEasing(sample.Opened(), 0, "linear", "constant"));
  EXPECT_EQ(plan.views[0].departure, "Out: Linear");
  EXPECT_EQ(plan.views[1].arrival, "In: Constant");
  const Document usual = WithEasing(WithEasing(sample.Opened(), 0, "linear", "linear"), 0, "", "");
  EXPECT_EQ(usual.text, kHandMade);
}

TEST(TourChanges, KeysBecomeViewsThatTheFilmMeetsAtTheSameTimes) {
  const Sample sample(
      "{\"image\": \"p.jpg\", \"film\": {\"seconds\": 8}, \"parameters\": {"
      "\"size\": [{\"time\": 0, \"value\": 1}, {\"time\": 0.25, \"value\": 2}, "
      "{\"time\": 0.5, \"value\": 2}, {\"time\": 1, \"value\": 4}],"
      "\"position\": [{\"time\": 0, \"value\": [0, 0]}, {\"time\": 1, \"value\": [0, 0]}]}}");
  const Document keys = sample.Opened();
  EXPECT_TRUE(Parts(keys).empty());
  EXPECT_THROW(WithPart(keys, 0, {0, 0, 10, 10}), host::Error);
  const Document views = WithKeysAsViews(keys, kPhoto);
  const std::vector<PhotoRect> parts = Parts(views);
  ASSERT_EQ(parts.size(), 3u) << views.text;
  EXPECT_NEAR(parts[0].width, 1600, 1e-3);
  EXPECT_NEAR(parts[1].width, 800, 1e-3);
  EXPECT_NEAR(parts[2].width, 400, 1e-3);
  EXPECT_EQ(Times(views), (Pairs{{0, 2}, {2, 4}, {0, 0}}));
}

TEST(TourChanges, KeysThatLookBesideThePhotoBecomeNoViews) {
  const Sample sample(
      "{\"image\": \"p.jpg\", \"parameters\": {\"position\": [{\"time\": 0, \"value\": [0, 0]}, "
      "{\"time\": 1, \"value\": [20, 0]}]}}");
  try {
    WithKeysAsViews(sample.Opened(), kPhoto);
    FAIL() << "there are no such views";
  } catch (const host::Error& error) {
    const std::string what = error.what();
    EXPECT_EQ(what.find("views[1].view: "), 0u) << what;
    EXPECT_NE(what.find("lies outside the photo"), std::string::npos) << what;
  }
}

}  // namespace
}  // namespace kelto::editor
