// Plots and storyboards: where things are drawn, and what of.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "host/base/error.h"
#include "host/drawing/axis_ticks.h"
#include "host/drawing/drawing.h"
#include "host/drawing/motion_plot.h"
#include "host/drawing/storyboard.h"
#include "host/facts/key_times.h"
#include "tests/host/support/videos.h"

namespace kelto::host {
namespace {

using test::Distance;
using test::Rgb;
using testing::ElementsAre;
using testing::HasSubstr;

class Drawings : public testing::Test {
 protected:
  Drawings() {
    hfx::SetConsole([](const std::string&) {});
    test::WritePng(folder_ / "photo.png", test::MakePicture(400, 300, [](int x, int) {
                     return x < 200 ? Rgb{200, 30, 30} : Rgb{30, 30, 200};
                   }));
    plan_.photo = folder_ / "photo.png";
    plan_.format.size = {160, 90};
    plan_.frames = 50;
    plan_.Set("display", std::string("Display: Target"));
    const ViewKey keys[] = {{0.0, {2.0, -0.25, 0.0}, "In: Linear", "Out: Linear"},
                            {1.0, {2.0, 0.25, 0.0}, "In: Linear", "Out: Linear"}};
    plan_.SetViews(keys);
  }
  void TearDown() override { hfx::SetConsole({}); }

  void Plot(const std::string& file) {
    const Photo photo = OpenPhoto(plan_.photo);
    FrameInspector inspector(KELTO_MODULE, plan_, photo);
    DrawMotionPlot(inspector, photo, file);
  }
  test::Picture Sheet(int32_t frames) {
    const std::string file = folder_ / "sheet.png";
    std::ofstream(file) << DrawStoryboard(KELTO_MODULE, plan_, OpenPhoto(plan_.photo),
                                          {file, frames});
    return test::ReadPng(file);
  }

  test::TempFolder folder_;
  RenderPlan plan_;
};

TEST_F(Drawings, ThePlotHasTitleNamesAndUnits) {
  Plot(folder_ / "plot.svg");
  Plot(folder_ / "plot.png");
  std::ifstream file(folder_ / "plot.svg");
  const std::string svg{std::istreambuf_iterator<char>(file), {}};
  EXPECT_THAT(svg, HasSubstr("<svg"));
  EXPECT_THAT(svg, HasSubstr("</svg>"));
  const test::Picture plot = test::ReadPng(folder_ / "plot.png");
  ASSERT_EQ(plot.width, 1200);
  // Letters of the title and of the time axis's name.
  const auto inked = [&](int left, int right, int top, int bottom) {
    int count = 0;
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) count += plot.At(x, y).g < 100 ? 1 : 0;
    }
    return count;
  };
  EXPECT_GT(inked(96, 400, 20, 45), 300);
  EXPECT_GT(inked(560, 700, 940, 962), 100);
}

TEST_F(Drawings, ThePlotsCurveRisesWhereTheViewGoesRight) {
  Plot(folder_ / "plot.png");
  const test::Picture plot = test::ReadPng(folder_ / "plot.png");
  const auto curveAt = [&](int x) {  // blue in the first panel
    for (int y = 106; y < 330; ++y) {
      const Rgb c = plot.At(x, y);
      if (c.b > c.r + 100) return y;
    }
    return -1;
  };
  const int early = curveAt(200), middle = curveAt(632), late = curveAt(1060);
  ASSERT_GT(early, 0);
  EXPECT_LT(late, middle);
  EXPECT_LT(middle, early);
  EXPECT_NEAR(middle, (early + late) / 2.0, 6) << "a linear move is a straight line";
}

TEST_F(Drawings, TheStoryboardShowsTheWholePhotoAndFramesOfTheFilm) {
  const test::Picture sheet = Sheet(3);
  ASSERT_EQ(sheet.width, 1600);
  // The photo, 1200 x 900 in the middle, from its upper left corner to the lower right.
  EXPECT_LE(Distance(sheet.At(220, 90), {200, 30, 30}), 6);
  EXPECT_LE(Distance(sheet.At(1380, 960), {30, 30, 200}), 6);
  // The strip: the first frame sees the left half alone, the last the right half.
  const int y = 76 + 900 + 32 + 100;
  EXPECT_LE(Distance(sheet.At(100, y), {200, 30, 30}), 6);
  EXPECT_LE(Distance(sheet.At(450, y), {200, 30, 30}), 6);
  EXPECT_LE(Distance(sheet.At(1500, y), {30, 30, 200}), 6);
  EXPECT_LE(Distance(sheet.At(700, y), {200, 30, 30}), 6) << "the middle one sees both";
  EXPECT_LE(Distance(sheet.At(900, y), {30, 30, 200}), 6);
}

TEST_F(Drawings, TheStoryboardsFramesLieOverTheVideosFrames) {
  plan_.over = test::WriteVideo(folder_ / "v.mkv", {{160, 90}, {25, 1}}, 50, [](int i) {
    return test::GreyFrame({160, 90}, 5 * i);
  });
  plan_.Set("compositeover", std::string("Background: Video"));
  const View small{0.3, 0.0, 0.0};
  const ViewKey far[] = {{0.0, small, "In: Linear", "Out: Linear"},
                         {1.0, small, "In: Linear", "Out: Linear"}};
  plan_.SetViews(far);
  const test::Picture sheet = Sheet(6);
  // A corner of each frame of the strip, which the photo leaves free.
  const auto frames = StripFrames(6, 50);
  for (int i = 0; i < 6; ++i) {
    const Rgb corner = sheet.At(32 + i * 259 + 8, sheet.height - 58 - 8);
    const auto level = uint8_t(5 * frames[size_t(i)]);
    EXPECT_LE(Distance(corner, {level, level, level}), 4) << i << ": " << test::ToString(corner);
  }
}

TEST_F(Drawings, AnSvgStoryboardKeepsNoMorePixelsThanItsPlacesShow) {
  plan_.format.size = {1280, 720};
  const std::string svg =
      DrawStoryboard(KELTO_MODULE, plan_, OpenPhoto(plan_.photo), {"sheet.svg", 6});
  const std::regex image("<image[^>]* width=\"([0-9]+)\"");
  int strip = 0;
  for (std::sregex_iterator at(svg.begin(), svg.end(), image), end; at != end; ++at) {
    const int width = std::stoi((*at)[1]);
    EXPECT_LE(width, 486) << "a place is 243 units wide; the photo has 400 pixels";
    strip += width > 400 ? 1 : 0;
  }
  EXPECT_EQ(strip, 6);
}

TEST_F(Drawings, LongTextsAreCutInTheirMiddle) {
  Drawing drawing(100, 100);
  const std::string name = "Z\u00FCrich " + std::string(200, 'x') + " See.jpg";
  const std::string cut = drawing.Shortened(name, 300.0, 22.0);
  EXPECT_LE(drawing.WidthOf(cut, 22.0), 300.0);
  EXPECT_GT(drawing.WidthOf(cut, 22.0), 260.0);
  EXPECT_THAT(cut, testing::StartsWith("Z\u00FCrich x"));
  EXPECT_THAT(cut, HasSubstr("x\u2026x"));
  EXPECT_THAT(cut, testing::EndsWith("x See.jpg"));
  EXPECT_EQ(drawing.Shortened("See.jpg", 300.0, 22.0), "See.jpg");
}

TEST_F(Drawings, TheStoryboardTellsWhatTheFilmIs) {
  const Photo photo = OpenPhoto(plan_.photo);
  EXPECT_EQ(StoryboardFacts(plan_, photo),
            "400x300 photo, film of 2.00 seconds, 160x90, 50 frames at 25 fps");
  plan_.frames = 1;
  EXPECT_THAT(StoryboardFacts(plan_, photo), HasSubstr(", 1 frame at 25 fps"));
}

TEST_F(Drawings, TheStoryboardOutlinesTheViewOfEachKey) {
  const test::Picture sheet = Sheet(1);
  // Key 2 sees the right half of the width: its upper edge, halfway along it, at
  // (150 - 112.5 / 2) / 300 of the photo's height.
  const int y = 76 + static_cast<int>(93.75 * 3);
  bool found = false;
  for (int dy = -4; dy <= 4; ++dy) found |= Distance(sheet.At(1250, y + dy), {255, 153, 51}) < 30;
  EXPECT_TRUE(found);
}

TEST_F(Drawings, OtherKindsOfFilesAreRefused) {
  EXPECT_THROW(Plot(folder_ / "plot.jpg"), UsageError);
  EXPECT_THROW(Plot(folder_ / "no/plot.png"), Error);
}

TEST_F(Drawings, OneTooLargeToBeDrawnIsRefusedByItsName) {
  const std::string file = folder_ / "wide.png";
  EXPECT_THAT([&] { Drawing(file, 100000.0, 10.0); },
              testing::ThrowsMessage<Error>(testing::StartsWith(file + ": cannot be drawn: ")));
}

TEST_F(Drawings, AFilmOfOneFrameIsDrawnToo) {
  plan_.frames = 1;
  EXPECT_NO_THROW(Plot(folder_ / "plot.png"));
  EXPECT_EQ(Sheet(12).width, 1600);
}

TEST(StripFrames, AreEvenFromFirstToLast) {
  EXPECT_THAT(StripFrames(5, 101), ElementsAre(0, 25, 50, 75, 100));
  EXPECT_THAT(StripFrames(12, 3), ElementsAre(0, 1, 2));
  EXPECT_THAT(StripFrames(1, 50), ElementsAre(0));
}

TEST(KeyTimes, AreThoseOfZoomAndPositionWithinTheFilm) {
  RenderPlan plan;
  plan.frames = 11;
  plan.SettingOf("size").keys = {{0.0, 1.0}, {0.52, 2.0}, {1.5, 3.0}};
  plan.SettingOf("position").keys = {{0.0, std::array{0.0, 0.0}}, {1.0, std::array{0.1, 0.0}}};
  const auto keys = KeyTimesOf(plan);
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[1].frame, 5);
  EXPECT_EQ(keys[2].frame, 10);
}

TEST(AxisTicks, AreRoundNumbers) {
  const Ticks ticks = TicksWithin(0.0, 4.96, 10);
  EXPECT_EQ(ticks.at.size(), 10u);
  EXPECT_NEAR(ticks.at[1], 0.5, 1e-12);
  EXPECT_EQ(ticks.decimals, 1);
}

TEST(AxisTicks, LeaveRoomAroundAValueThatStandsStill) {
  const Ticks ticks = TicksFor(2.0, 2.0, 5, 0.2);
  EXPECT_LT(ticks.least, 2.0);
  EXPECT_GT(ticks.most, 2.0);
}

}  // namespace
}  // namespace kelto::host
