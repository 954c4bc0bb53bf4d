// A film in a few lines.
#include "host/facts/film_summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/error.h"
#include "host/plan/default_plan.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;
using testing::Not;

class Summary : public testing::Test {
 protected:
  Summary() {
    hfx::SetConsole([](const std::string&) {});
    test::WritePhoto(photo_, 300, 200, [](int32_t, int32_t) { return test::Rgb{9, 9, 9}; });
    plan_ = DefaultPlan(photo_);
    plan_.format.size = {150, 100};
    plan_.frames = 26;
  }
  void TearDown() override { hfx::SetConsole({}); }
  FilmSummary Of() {
    FrameInspector inspector(KELTO_MODULE, plan_, OpenPhoto(photo_));
    return SummaryOf(inspector);
  }
  std::string Text() {
    const Photo photo = OpenPhoto(photo_);
    FrameInspector inspector(KELTO_MODULE, plan_, photo);
    return SummaryText(inspector, photo);
  }

  test::TempFolder folder_;
  const std::string photo_ = folder_ / "photo.bmp";
  RenderPlan plan_;
};

TEST_F(Summary, SaysWhereTheFilmIsFastestAndHowFarItEnlarges) {
  SetMove(plan_, View{1.0, 0.0, 0.0}, View{4.0, 0.0, 0.0});
  plan_.motion = MotionLaw::kSteady;
  const FilmSummary summary = Of();
  EXPECT_NEAR(summary.fastest.seconds, 0.5, 0.05) << "eased at both ends";
  EXPECT_GT(summary.fastest.value, 4 * summary.slowest.value);
  EXPECT_TRUE(summary.slowest.seconds < 0.1 || summary.slowest.seconds > 0.9);
  // Zoom 1 shows the photo at half its size, zoom 4 at twice.
  EXPECT_NEAR(summary.enlargement.value, 2.0, 0.01);
  EXPECT_NEAR(summary.enlargement.seconds, 1.0, 1e-9);
  EXPECT_GT(summary.most.zoom, 2.0) << "two doublings in a second, and eased";
}

TEST_F(Summary, OfAViewThatStandsStillIsCalm) {
  SetMove(plan_, View{1.0, 0.0, 0.0}, View{1.0, 0.0, 0.0});
  const FilmSummary summary = Of();
  EXPECT_EQ(summary.fastest.value, 0.0);
  EXPECT_EQ(summary.slowest.value, 0.0);
  EXPECT_NEAR(summary.enlargement.value, 0.5, 0.01);
}

TEST_F(Summary, WarnsAboveOneAndAHalfTimesAlone) {
  SetMove(plan_, View{2.9, 0.0, 0.0}, View{2.9, 0.0, 0.0});
  EXPECT_THAT(Text(), Not(HasSubstr("warning")));
  SetMove(plan_, View{3.1, 0.0, 0.0}, View{3.1, 0.0, 0.0});
  EXPECT_THAT(Text(), HasSubstr("enlargement:  1.55 times at the most"));
  EXPECT_THAT(Text(), HasSubstr("warning:      above 1.5 times the picture looks soft"));
  EXPECT_THAT(Text(), HasSubstr("photo.bmp, 300x200 pixels\n"));
  EXPECT_THAT(Text(), HasSubstr("film:         1.04 s, 26 frames at 25 fps, 150x100\n"));
}

}  // namespace
}  // namespace kelto::host
