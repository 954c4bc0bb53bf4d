// A plan's keys as a tour, frame by frame.
#include "host/track/view_track.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/effect/render_state.h"
#include "host/plan/default_plan.h"
#include "host/track/planned_stops.h"

namespace kelto::host {
namespace {

constexpr PixelSize kPhoto{1632, 918};  // of the frame's shape

class Track : public testing::Test {
 protected:
  Track() : plan_(DefaultPlan("photo.jpg")) {
    plan_.motion = MotionLaw::kSteady;
    plan_.frames = 5;
  }
  void Go(const View& from, const View& to) {
    plan_.SetViews(std::array{ViewKey{0.0, from, "In: Linear", "Out: Linear"},
                              ViewKey{1.0, to, "In: Linear", "Out: Linear"}});
  }
  View At(int32_t frame, int32_t field = 0) const {
    return ViewTrack::For(plan_, kPhoto)->At(FieldState(plan_, frame, field));
  }

  RenderPlan plan_;
};

TEST_F(Track, ThereIsNoneWhereTheEffectsKeysMakeTheMove) {
  plan_.motion = MotionLaw::kLinear;
  EXPECT_EQ(ViewTrack::For(plan_, kPhoto), nullptr);
}

TEST_F(Track, MeetsTheViewsOfThePlan) {
  const View from{1.0, 0.1, -0.2}, to{8.0, 0.4, 0.3};
  Go(from, to);
  for (const auto& [frame, view] : {std::pair{0, from}, std::pair{4, to}}) {
    EXPECT_NEAR(At(frame).zoom, view.zoom, 1e-9);
    EXPECT_NEAR(At(frame).centreX, view.centreX, 1e-9);
    EXPECT_NEAR(At(frame).centreY, view.centreY, 1e-9);
  }
}

TEST_F(Track, GoesSteadily) {
  Go({1.0, 0.0, 0.0}, {8.0, 0.4, 0.0});
  EXPECT_NEAR(At(2).zoom, 2.828427, 1e-6);
  EXPECT_NEAR(At(2).centreX, 0.295518, 1e-6);
}

TEST_F(Track, MeasuresCentresAsTheEffectDoes) {
  for (const View& view : {View{0.5, 0.2, -0.3}, View{1.0, 0.2, -0.3}, View{4.0, 0.2, -0.3}}) {
    const View again = ViewOf(WindowOf(view, 0.5625), 0.5625);
    EXPECT_NEAR(again.zoom, view.zoom, 1e-12);
    EXPECT_NEAR(again.centreX, view.centreX, 1e-12);
    EXPECT_NEAR(again.centreY, view.centreY, 1e-12);
  }
  // Below zoom 1 in the view's own size, which is twice that of zoom 1 here.
  EXPECT_NEAR(WindowOf({0.5, 0.2, -0.3}, 0.5625).x, 0.4, 1e-12);
  EXPECT_NEAR(WindowOf({0.5, 0.2, -0.3}, 0.5625).y, -0.3375, 1e-12);
}

TEST_F(Track, TheSecondFieldIsHalfAFrameLaterUnlessTheFilmIsProgressive) {
  plan_.format.fields = FieldOrder::kTopFirst;
  Go({1.0, 0.0, 0.0}, {4.0, 0.0, 0.0});
  EXPECT_NEAR(At(0, 1).zoom, std::pow(4.0, 0.5 / 4), 1e-9);
  plan_.Set("progressive", true);
  EXPECT_NEAR(At(1, 1).zoom, std::pow(4.0, 0.25), 1e-9);
}

TEST_F(Track, KeysOfOneParameterAloneTakeTheOtherFromItsNeighbours) {
  plan_.SettingOf("size").keys = {{0.0, 1.0}, {1.0, 2.0}};
  plan_.SettingOf("position").keys = {
      {0.0, std::array{0.0, 0.0}}, {0.5, std::array{0.1, 0.0}}, {1.0, std::array{0.0, 0.0}}};
  EXPECT_NEAR(At(2).zoom, 1.5, 1e-9);
  EXPECT_NEAR(At(2).centreX, 0.1, 1e-9);
}

TEST_F(Track, FewerThanTwoKeysAreZoom1AndTheMiddleAsInTheEffect) {
  plan_.SettingOf("size").keys = {{0.3, 4.0}};
  plan_.SettingOf("position").keys.clear();
  EXPECT_EQ(At(1).zoom, 1.0);
  EXPECT_EQ(At(1).centreX, 0.0);
}

TEST_F(Track, AVelocityWithoutAKeyThereIsLinear) {
  Go({1.0, 0.0, 0.0}, {4.0, 0.0, 0.0});
  plan_.SettingOf("outvelocity").keys.clear();
  plan_.SettingOf("invelocity").keys = {{0.4, std::string("In: Ease In")}};
  EXPECT_NEAR(At(1).zoom, std::pow(4.0, 0.25), 1e-9);
}

TEST_F(Track, TheRoomIsThePhotoInWidthsOfZoom1) {
  const motion::Room wide = RoomOf(plan_, {3264, 918});
  EXPECT_NEAR(wide.right, 0.5, 1e-6) << "a landscape photo fills the width at zoom 1";
  EXPECT_NEAR(wide.bottom, 918.0 / 3264 / 2, 1e-6);
  const motion::Room tall = RoomOf(plan_, {918, 1632});
  EXPECT_NEAR(tall.bottom, 0.5625 / 2, 1e-4) << "others the height";
}

}  // namespace
}  // namespace kelto::host
