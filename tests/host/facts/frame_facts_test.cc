// What is said of frames, held against frames.
#include "host/facts/frame_facts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <vector>

#include "host/base/error.h"
#include "host/frames/effect_session.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

/// Photos whose brightness is a column's or a row's number, in levels that the effect leaves alone.
constexpr int32_t kPhotoWidth = 210, kPhotoHeight = 160;
constexpr int32_t kDarkest = 20;

constexpr const char* kIn[] = {"In: Linear", "In: Ease In", "In: Constant"};
constexpr const char* kOut[] = {"Out: Linear", "Out: Ease Out", "Out: Constant", "Out: Hold"};

/// A straight line through the positions found along a row or column of a frame.
struct Line {
  double start = 0.0, step = 0.0;
};

std::optional<Line> FitLine(const std::vector<double>& at, const std::vector<double>& found) {
  if (at.size() < 12) return std::nullopt;
  const auto count = static_cast<double>(at.size());
  double sumX = 0, sumY = 0, sumXX = 0, sumXY = 0;
  for (size_t i = 0; i < at.size(); ++i) {
    sumX += at[i], sumY += found[i], sumXX += at[i] * at[i], sumXY += at[i] * found[i];
  }
  const double step = (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
  return Line{(sumY - step * sumX) / count, step};
}

class Facts : public testing::Test {
 protected:
  Facts() {
    hfx::SetConsole([](const std::string&) {});
    WriteRamp("columns.bmp", [](int32_t x, int32_t) { return x; });
    WriteRamp("rows.bmp", [](int32_t, int32_t y) { return y; });
    plan_.format.size = {96, 64};
    plan_.frames = 24;
    plan_.Set("levels", std::string("Source Has 601 Levels"));
    plan_.Set("display", std::string("Display: Target"));
    plan_.Set("filter", std::string("Filter: Triangle"));
  }
  void TearDown() override { hfx::SetConsole({}); }

  template <typename Number>
  void WriteRamp(const char* name, Number number) {
    test::WritePhoto(folder_ / name, kPhotoWidth, kPhotoHeight, [&](int32_t x, int32_t y) {
      const auto level = static_cast<uint8_t>(kDarkest + number(x, y));
      return test::Rgb{level, level, level};
    });
  }

  void SetRandomMove(std::mt19937& random) {
    const auto among = [&](double least, double most) {
      return std::uniform_real_distribution<double>(least, most)(random);
    };
    const auto one = [&](const auto& entries) {
      return std::string(entries[random() % std::size(entries)]);
    };
    std::vector<ViewKey> keys;
    const auto count = 2 + random() % 4;
    for (size_t i = 0; i < count; ++i) {
      const double time = i == 0 ? 0.0 : (static_cast<double>(i) + among(-0.3, 0.3)) / count;
      keys.push_back(
          {time, {among(0.7, 3.0), among(-0.25, 0.25), among(-0.25, 0.25)}, one(kIn), one(kOut)});
    }
    plan_.SetViews(keys);
    plan_.Set("path", std::string(random() % 2 == 0 ? "Path: Linear" : "Path: Spline"));
  }

  FrameInspector Inspector(double quality = 1.0) {
    return {KELTO_MODULE, plan_, OpenPhoto(folder_ / "columns.bmp"), quality};
  }
  EffectSession Session(const char* photo) {
    return {KELTO_MODULE, plan_, OpenPhoto(folder_ / photo), PixelLayout::kYCbYCr};
  }

  /// Holds the area against the positions that the frame's brightness tells, where it is far enough
  /// from the photo's edges that no filter reaches across them. Counts what could be held.
  void ExpectSeen(const FrameFacts& facts, const FrameView& columns, const FrameView& rows,
                  double tolerance) {
    const FrameSize size = plan_.format.size;
    const DrawnArea& area = facts.area;
    Hold(area.left + area.stepX, area.scaleX, kPhotoWidth, size.width, tolerance,
         [&](int32_t x) { return MiddleLevel(facts, x, size, columns); });
    Hold(area.top + area.stepY, area.scaleY, kPhotoHeight, size.height, tolerance, [&](int32_t y) {
      const int32_t x = MiddleColumn(facts, size);
      return x < 0 ? std::nullopt : std::optional<int32_t>(rows.Row(y)[2 * x]);
    });
  }
  int32_t held_ = 0;
  double errors_ = 0.0;  ///< sum of all that were held

 private:
  /// A frame column, or row, whose place in the photo is well inside it; -1 when there is none.
  static int32_t Inside(double first, double scale, int32_t photo, int32_t frame) {
    for (int32_t i = 0; i < frame; ++i) {
      const double position = first + i * scale;
      if (position > 8 && position < photo - 8) return i;
    }
    return -1;
  }
  static int32_t MiddleColumn(const FrameFacts& facts, FrameSize size) {
    return Inside(facts.area.left, facts.area.scaleX, kPhotoWidth, size.width);
  }
  static std::optional<int32_t> MiddleLevel(const FrameFacts& facts, int32_t x, FrameSize size,
                                            const FrameView& view) {
    const int32_t y = Inside(facts.area.top, facts.area.scaleY, kPhotoHeight, size.height);
    return y < 0 ? std::nullopt : std::optional<int32_t>(view.Row(y)[2 * x]);
  }
  template <typename Level>
  void Hold(double first, double scale, int32_t photo, int32_t frame, double tolerance,
            Level level) {
    std::vector<double> at, found;
    for (int32_t i = 0; i < frame; ++i) {
      const double position = first + i * scale;
      if (position < 8 || position > photo - 8) continue;
      if (const auto seen = level(i)) {
        at.push_back(i);
        found.push_back(*seen - kDarkest + 0.5);  // the pixel's middle
      }
    }
    const auto line = FitLine(at, found);
    if (!line) return;
    const double middle = (at.front() + at.back()) / 2;
    ++held_;
    errors_ += line->start + line->step * middle - (first + scale * middle);
    EXPECT_NEAR(line->start + line->step * middle, first + scale * middle, tolerance);
    EXPECT_NEAR(line->step * static_cast<double>(at.size()), scale * static_cast<double>(at.size()),
                4 * tolerance);
  }

 protected:
  test::TempFolder folder_;
  RenderPlan plan_;
};

TEST_F(Facts, TellWherePixelsOfRenderedFramesComeFrom) {
  std::mt19937 random(5);
  for (int32_t project = 0; project < 60; ++project) {
    SetRandomMove(random);
    FrameInspector inspector = Inspector();
    EffectSession columns = Session("columns.bmp"), rows = Session("rows.bmp");
    for (int32_t number : {0, 3, 7, 11, 12, 18, 23}) {
      SCOPED_TRACE(testing::Message() << "project " << project << ", frame " << number);
      ExpectSeen(inspector.Of(number), columns.Render(number), rows.Render(number), 0.55);
    }
    if (HasFailure()) return;
  }
  // Levels are whole, so that one frame can be half a pixel off; all together cannot.
  EXPECT_GT(held_, 600);
  EXPECT_NEAR(errors_ / held_, 0.0, 0.03);
}

TEST_F(Facts, HoldForReducedCopiesWhilePlaying) {
  std::mt19937 random(6);
  plan_.playMode = hfxPlayModePreview;
  for (int32_t project = 0; project < 20; ++project) {
    SetRandomMove(random);
    FrameInspector inspector = Inspector();
    EffectSession columns = Session("columns.bmp"), rows = Session("rows.bmp");
    for (int32_t number : {0, 9, 23}) {
      SCOPED_TRACE(testing::Message() << "project " << project << ", frame " << number);
      const FrameFacts facts = inspector.Of(number);
      EXPECT_TRUE(facts.area.reduced);
      EXPECT_EQ(facts.area.cached.width, 96);
      EXPECT_EQ(facts.area.cached.height, 73);
      // The reduced copy itself lies off by half of one of its pixels, two of the photo's.
      ExpectSeen(facts, columns.Render(number), rows.Render(number), 1.2);
    }
    if (HasFailure()) return;
  }
}

TEST_F(Facts, FrameCornersOfAStandingViewShowTheAreasCorners) {
  const ViewKey keys[] = {{0.0, {3.0, 0.1, 0.05}, "In: Linear", "Out: Linear"},
                          {1.0, {3.0, 0.1, 0.05}, "In: Linear", "Out: Linear"}};
  plan_.SetViews(keys);
  const FrameFacts facts = Inspector().Of(5);
  // A third of the photo, a tenth of it right of the middle.
  EXPECT_NEAR(facts.area.left, 70.0 + 21.0, 1e-3);
  EXPECT_NEAR(facts.area.right, 140.0 + 21.0, 1e-3);
  EXPECT_NEAR(facts.area.scaleX, 70.0 / 96.0, 1e-5);
  EXPECT_NEAR(facts.area.bottom - facts.area.top, 140.0 / 3.0, 1e-3);
  EffectSession session = Session("columns.bmp");
  const FrameView frame = session.Render(5);
  EXPECT_NEAR(frame.Row(0)[0] - kDarkest, facts.area.left, 1.0);
  EXPECT_NEAR(frame.Row(63)[2 * 95] - kDarkest, facts.area.left + 95 * facts.area.scaleX, 1.0);
}

TEST_F(Facts, FieldsLieHalfAFrameApart) {
  plan_.format.fields = FieldOrder::kTopFirst;
  const ViewKey keys[] = {{0.0, {2.0, -0.2, 0.0}, "In: Linear", "Out: Linear"},
                          {1.0, {2.0, 0.2, 0.0}, "In: Linear", "Out: Linear"}};
  plan_.SetViews(keys);
  FrameInspector inspector = Inspector();
  const FrameFacts first = inspector.Of(4, 0), second = inspector.Of(4, 1),
                   next = inspector.Of(5, 0);
  EXPECT_NEAR(second.area.left - first.area.left, next.area.left - second.area.left, 1e-3);
  EXPECT_GT(second.area.left, first.area.left + 1.0);
  EXPECT_NEAR(second.seconds, 4.5 / 25, 1e-12);
  EXPECT_NEAR(second.time, 4.5 / 23, 1e-12);
  EffectSession session = Session("columns.bmp");
  const FrameView frame = session.Render(4);
  const auto at48 = [](const FrameFacts& facts) {
    return facts.area.left + 48 * facts.area.scaleX;
  };
  EXPECT_NEAR(frame.Row(30)[2 * 48] - kDarkest, at48(first), 1.0);
  EXPECT_NEAR(frame.Row(31)[2 * 48] - kDarkest, at48(second), 1.0);
}

TEST_F(Facts, TheFilterIsTheFastestAtHalfQualityAndInTheSourceDisplay) {
  plan_.Set("filter", std::string("Filter: Kelto Ultra Qual"));
  EXPECT_EQ(Inspector(1.0).Of(0).filter, "Filter: Kelto Ultra Qual");
  EXPECT_EQ(Inspector(0.51).Of(0).filter, "Filter: Kelto Ultra Qual");
  EXPECT_EQ(Inspector(0.5).Of(0).filter, "Filter: Real Time");
  plan_.Set("display", std::string("Display: Source"));
  EXPECT_EQ(Inspector(1.0).Of(0).filter, "Filter: Real Time");
}

TEST_F(Facts, TheSourceDisplayDrawsTheWholePhotoWhileTheViewMovesOn) {
  const ViewKey keys[] = {{0.0, {2.0, 0.1, 0.0}, "In: Linear", "Out: Linear"},
                          {1.0, {4.0, 0.1, 0.0}, "In: Linear", "Out: Linear"}};
  plan_.SetViews(keys);
  plan_.Set("display", std::string("Display: Source"));
  FrameInspector inspector = Inspector();
  const FrameFacts last = inspector.Of(23);
  EXPECT_NEAR(last.view.zoom, 4.0, 1e-6);
  EXPECT_NEAR(last.area.left, 0.0, 1e-6);
  EXPECT_NEAR(last.area.right, kPhotoWidth, 1e-6);
  EXPECT_NEAR(inspector.ViewArea(last).right - inspector.ViewArea(last).left, kPhotoWidth / 4.0,
              1e-3);
}

TEST_F(Facts, FinalRendersDrawFromThePhotoAndPlayingFromACopyOfTheFramesSize) {
  EXPECT_FALSE(Inspector().Of(0).area.reduced);
  EXPECT_EQ(Inspector().Of(0).area.cached.width, kPhotoWidth);
  plan_.playMode = hfxPlayModePreview;
  EXPECT_TRUE(Inspector().Of(0).area.reduced);
  plan_.format.size = {640, 480};
  EXPECT_FALSE(Inspector().Of(0).area.reduced) << "a photo smaller than the frame stays as it is";
}

TEST_F(Facts, AFilmOfOneFrameHasThem) {
  plan_.frames = 1;
  const FrameFacts only = Inspector().Of(0);
  EXPECT_EQ(only.time, 0.0);
  EXPECT_EQ(only.view.zoom, 1.0);
}

}  // namespace
}  // namespace kelto::host
