// The list of frames in its three forms.
#include "host/facts/frame_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "host/base/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class FrameListing : public testing::Test {
 protected:
  FrameListing() {
    hfx::SetConsole([](const std::string&) {});
    test::WritePhoto(folder_ / "photo.bmp", 90, 60, [](int32_t, int32_t) {
      return test::Rgb{9, 9, 9};
    });
    plan_.format.size = {48, 32};
    plan_.frames = 3;
    const ViewKey keys[] = {{0.0, {1.0, 0.0, 0.0}, "In: Linear", "Out: Linear"},
                            {1.0, {3.0, 0.1, 0.3}, "In: Linear", "Out: Linear"}};
    plan_.SetViews(keys);
    plan_.Set("display", std::string("Display: Target"));
  }
  void TearDown() override { hfx::SetConsole({}); }

  std::string List(ListForm form) {
    const Photo photo = OpenPhoto(folder_ / "photo.bmp");
    FrameInspector inspector(KELTO_MODULE, plan_, photo);
    std::string list;
    WriteFrameList(inspector, photo, form, [&](const std::string& text) { list += text; });
    return list;
  }
  static std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
  }

  test::TempFolder folder_;
  RenderPlan plan_;
};

TEST_F(FrameListing, TheTableHasTwoHeadLinesAndALineAFrame) {
  const auto lines = Split(List(ListForm::kTable), '\n');
  ASSERT_EQ(lines.size(), 2u + 3u);
  for (const std::string& line : lines) EXPECT_EQ(line.size(), lines[0].size());
  EXPECT_THAT(lines[0], HasSubstr("centre x"));
  EXPECT_THAT(lines[1], HasSubstr("photo px"));
  EXPECT_THAT(lines[4], HasSubstr("Filter: Real Time"));
}

TEST_F(FrameListing, CsvHasANameAColumnAndAsManyCellsInEveryLine) {
  const auto lines = Split(List(ListForm::kCsv), '\n');
  ASSERT_EQ(lines.size(), 1u + 3u);
  EXPECT_THAT(Split(lines[0], ','),
              ElementsAre("frame", "seconds", "time", "zoom", "x", "y", "left", "top", "width",
                          "height", "scale_x", "scale_y", "filter", "level", "cached_width",
                          "cached_height", "reduced", "pan_speed", "zoom_rate", "perceived_speed"));
  for (const std::string& line : lines) EXPECT_EQ(Split(line, ',').size(), 20u) << line;
}

TEST_F(FrameListing, JsonReadsBackAsTheVeryNumbers) {
  const auto list = nlohmann::json::parse(List(ListForm::kJson));
  const Photo photo = OpenPhoto(folder_ / "photo.bmp");
  FrameInspector inspector(KELTO_MODULE, plan_, photo);
  EXPECT_EQ(list["photo"], photo.given);
  EXPECT_EQ(list["photo_width"], 90);
  EXPECT_EQ(list["height"], 32);
  ASSERT_EQ(list["frames"].size(), 3u);
  for (int32_t number = 0; number < 3; ++number) {
    const FrameFacts facts = inspector.Of(number);
    const auto& frame = list["frames"][static_cast<size_t>(number)];
    EXPECT_EQ(frame["frame"], number);
    EXPECT_EQ(frame["zoom"].get<double>(), facts.view.zoom);
    EXPECT_EQ(frame["y"].get<double>(), facts.view.centreY);
    EXPECT_EQ(frame["left"].get<double>(), facts.area.left);
    EXPECT_EQ(frame["scale_y"].get<double>(), facts.area.scaleY);
    EXPECT_EQ(frame["reduced"], false);
  }
}

TEST_F(FrameListing, InterlacedFilmsHaveALineAField) {
  plan_.format.fields = FieldOrder::kBottomFirst;
  const auto lines = Split(List(ListForm::kCsv), '\n');
  ASSERT_EQ(lines.size(), 1u + 6u);
  EXPECT_EQ(Split(lines[0], ',')[1], "field");
  EXPECT_EQ(Split(lines[3], ',')[0], "1");
  EXPECT_EQ(Split(lines[3], ',')[1], "1");
  EXPECT_EQ(Split(lines[4], ',')[1], "2");
}

}  // namespace
}  // namespace kelto::host
