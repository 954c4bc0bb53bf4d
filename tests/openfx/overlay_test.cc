// The view's outline on the viewer of a host that can draw there.
#include <gtest/gtest.h>

#include "tests/adapters/run.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

class OpenFxOverlay : public testing::Test {
 protected:
  OpenFxOverlay() : host_(BuiltPlugin()) {
    WriteTestPhoto(folder_ / "photo.bmp", 320, 180);
    EXPECT_EQ(host_.Start(ofx::context::kFilter), ofx::kOk);
    host_.parameter("filename").text = folder_ / "photo.bmp";
    EXPECT_EQ(host_.Create(), ofx::kOk);
  }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  /// The corners' places, of frames of 320 by 180.
  void ExpectOutline(double time, double left, double bottom, double right, double top) {
    const std::vector<ofx::PointD> corners = host_.Overlay(time);
    ASSERT_EQ(corners.size(), 4u);
    const double xs[] = {left, right, right, left}, ys[] = {bottom, bottom, top, top};
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_NEAR(corners[i].x, xs[i], 1e-3) << i;
      EXPECT_NEAR(corners[i].y, ys[i], 1e-3) << i;
    }
  }

  TempFolder folder_;
  StrictHost host_;
};

TEST_F(OpenFxOverlay, ShowsWhereTheViewLiesInTheFrame) {
  ExpectOutline(0.0, 0.0, 0.0, 320.0, 180.0);
  host_.parameter("zoom").number = [](double) { return 2.0; };
  host_.parameter("x").number = [](double) { return 0.1; };   // to the right
  host_.parameter("y").number = [](double) { return -0.2; };  // and up
  ExpectOutline(0.0, 112.0, 81.0, 272.0, 171.0);
}

TEST_F(OpenFxOverlay, FollowsAMotionAndCountsInTheViewsOwnSizeBelowZoomOne) {
  host_.parameter("from").text = "1";
  host_.parameter("to").text = "0.5@0.1,0";
  host_.parameter("progress").number = [](double time) { return time / 10.0; };
  ExpectOutline(0.0, 0.0, 0.0, 320.0, 180.0);
  ExpectOutline(10.0, -96.0, -90.0, 544.0, 270.0);
}

TEST_F(OpenFxOverlay, DrawsNothingWhereThereIsNothingToOutline) {
  EXPECT_TRUE(host_.Overlay(0.0, false).empty()) << "no context";
  host_.parameter("display").choice = 0;
  EXPECT_TRUE(host_.Overlay(0.0).empty()) << "the effect outlines the view itself";
  host_.parameter("display").choice = 1;
  EXPECT_EQ(host_.Overlay(0.0).size(), 4u);
  host_.parameter("filename").text = folder_ / "nowhere.bmp";
  EXPECT_TRUE(host_.Overlay(0.0).empty()) << "no photograph";
  host_.Destroy();
  EXPECT_TRUE(host_.Overlay(0.0).empty()) << "no instance";
}

TEST(OpenFxWithoutOverlay, AHostThatCannotDrawGetsNoneAndTheSameFrames) {
  const TempFolder folder;
  WriteTestPhoto(folder / "photo.bmp", 320, 180);
  std::vector<std::vector<uint8_t>> frames;
  for (const HostLacks& lacks : {HostLacks{}, HostLacks{ofx::kDrawSuite}, HostLacks{"", true}}) {
    StrictHost host(BuiltPlugin(), lacks);
    ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
    host.parameter("filename").text = folder / "photo.bmp";
    ASSERT_EQ(host.Create(), ofx::kOk);
    if (lacks.functions) {
      EXPECT_TRUE(host.Overlay(0.0).empty());
    }
    HostImage image{{0, 0, 64, 36}, {0, 0, 64, 36}};
    image.Make();
    ASSERT_EQ(host.Run({.output = &image}), ofx::kOk);
    frames.push_back(image.memory);
  }
  EXPECT_EQ(frames[1], frames[0]);
  EXPECT_EQ(frames[2], frames[0]);
  EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>());
}

}  // namespace
}  // namespace kelto::test
