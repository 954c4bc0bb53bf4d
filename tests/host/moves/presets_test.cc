#include "host/moves/presets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/base/error.h"
#include "host/plan/default_plan.h"

namespace kelto::host {
namespace {

constexpr PixelSize kShapes[] = {{3000, 2000}, {1920, 1080}, {2000, 3000}, {9000, 1500},
                                 {2000, 2000}, {801, 2407},  {400, 300},   {6000, 4000}};
/// Of a photo pixel, for the module's single precision.
constexpr double kRounding = 0.02;

std::vector<std::string> Names() {
  std::vector<std::string> names;
  std::istringstream list(MoveNames());
  for (std::string name; std::getline(list >> std::ws, name, ',');) names.push_back(name);
  return names;
}

/// What the module shows of the views that are made of a move.
std::vector<PhotoRect> Shown(const PhotoViews& views, const std::string& name, Fit fit) {
  std::vector<PhotoRect> shown;
  for (const PhotoRect& part : MoveViews(views, name, fit)) {
    shown.push_back(views.PartOf(views.ViewOf(part)));
  }
  return shown;
}

std::string Text(const PhotoRect& part) {
  return std::to_string(part.x) + "," + std::to_string(part.y) + "," + std::to_string(part.width) +
         "," + std::to_string(part.height);
}

TEST(Moves, AreElevenAndAuto) {
  EXPECT_EQ(MoveNames(),
            "in, out, left, right, up, down, up-left, up-right, down-left, down-right, hold");
}

TEST(Moves, FirstAndLastViewsOfEachStayWithinPhotosOfAllShapes) {
  for (const PixelSize size : kShapes) {
    for (const FieldOrder fields : {FieldOrder::kProgressive, FieldOrder::kTopFirst}) {
      RenderPlan plan = DefaultPlan("photo.jpg");
      plan.format.fields = fields;
      const PhotoViews views(plan, size);
      for (const std::string& name : Names()) {
        for (const PhotoRect& part : Shown(views, name, Fit::kFill)) {
          SCOPED_TRACE(name + " " + std::to_string(size.width) + "x" + std::to_string(size.height) +
                       " " + Text(part));
          EXPECT_GE(part.x, -kRounding);
          EXPECT_GE(part.y, -kRounding);
          EXPECT_LE(part.Right(), size.width + kRounding);
          EXPECT_LE(part.Bottom(), size.height + kRounding);
          EXPECT_NEAR(part.width / part.height, 16.0 / 9.0, 1e-4);
        }
      }
    }
  }
}

TEST(Moves, WholeShowsAllOfThePhotoInTheWidestView) {
  for (const PixelSize size : kShapes) {
    const PhotoViews views(DefaultPlan("photo.jpg"), size);
    for (const char* name : {"in", "out", "hold"}) {
      const auto shown = Shown(views, name, Fit::kWhole);
      const PhotoRect& wide = shown[name == std::string("out") ? 1 : 0];
      EXPECT_LE(wide.x, kRounding) << Text(wide);
      EXPECT_LE(wide.y, kRounding) << Text(wide);
      EXPECT_GE(wide.Right(), size.width - kRounding) << Text(wide);
      EXPECT_GE(wide.Bottom(), size.height - kRounding) << Text(wide);
    }
  }
}

TEST(Moves, GoWhereTheirNamesSay) {
  for (const PixelSize size : kShapes) {
    for (const Fit fit : {Fit::kFill, Fit::kWhole}) {
      const PhotoViews views(DefaultPlan("photo.jpg"), size);
      for (const std::string& name : Names()) {
        const auto shown = Shown(views, name, fit);
        ASSERT_EQ(shown.size(), 2u);
        SCOPED_TRACE(name + " " + Text(shown[0]) + " " + Text(shown[1]));
        const auto says = [&](const char* word) { return name.find(word) != std::string::npos; };
        // At least a fifth of the photo's side.
        const double across = (shown[1].CentreX() - shown[0].CentreX()) / size.width;
        const double down = (shown[1].CentreY() - shown[0].CentreY()) / size.height;
        const double left = says("left") ? -1 : says("right") ? 1 : 0;
        const double up = says("up") ? -1 : says("down") ? 1 : 0;
        EXPECT_TRUE(left == 0 ? std::abs(across) < 1e-4 : across * left > 0.199) << across;
        EXPECT_TRUE(up == 0 ? std::abs(down) < 1e-4 : down * up > 0.199) << down;
        const double closer = shown[0].width / shown[1].width;
        const bool zooms = name == "in" || name == "out";
        EXPECT_TRUE(!zooms || (name == "in" ? closer : 1 / closer) > 1.499) << closer;
        EXPECT_TRUE(zooms || std::abs(closer - 1) < 1e-4) << closer;
      }
    }
  }
}

TEST(Moves, OfAnotherNameAreRefusedWithTheNamesThereAre) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {300, 200});
  try {
    MoveViews(views, "inn", Fit::kFill);
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("in, out, left"));
  }
  EXPECT_THROW(ParseFit("full"), UsageError);
}

}  // namespace
}  // namespace kelto::host
