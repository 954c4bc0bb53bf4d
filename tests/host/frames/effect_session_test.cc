#include "host/frames/effect_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "host/base/error.h"
#include "platform/ipl.h"
#include "tests/host/support/videos.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;

class Session : public testing::Test {
 protected:
  Session() {
    hfx::SetConsole([](const std::string&) {});
    test::WritePhoto(folder_ / "photo.bmp", 90, 60, [](int32_t x, int32_t y) {
      return test::Rgb{uint8_t(2 * x), uint8_t(4 * y), 50};
    });
    plan_.photo = folder_ / "photo.bmp";
    plan_.format.size = {48, 32};
    plan_.frames = 5;
    const ViewKey keys[] = {{0.0, {1.0, 0.0, 0.0}, "In: Linear", "Out: Linear"},
                            {1.0, {3.0, 0.1, 0.1}, "In: Linear", "Out: Linear"}};
    plan_.SetViews(keys);
    plan_.Set("display", std::string("Display: Target"));
    plan_.Set("filter", std::string("Filter: Cubic"));
  }
  void TearDown() override {
    session_.reset();
    iplxSetMemoryLimit(0);
    hfx::SetConsole({});
  }

  void Open() { session_.emplace(KELTO_MODULE, plan_, OpenPhoto(plan_.photo), PixelLayout::kBGRA); }
  /// The photo leaves the corners to what is behind it.
  void ShowFarAwayOverVideo() {
    plan_.Set("compositeover", std::string("Background: Video"));
    const View far{0.1, 0.0, 0.0};
    const ViewKey keys[] = {{0.0, far, "In: Linear", "Out: Linear"},
                            {1.0, far, "In: Linear", "Out: Linear"}};
    plan_.SetViews(keys);
  }
  std::string ErrorOfOpening() {
    try {
      Open();
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }
  std::vector<uint8_t> Frame(int32_t number) {
    const FrameView view = session_->Render(number);
    return {view.pixels, view.pixels + view.rowBytes * view.size.height};
  }

  test::TempFolder folder_;
  RenderPlan plan_;
  std::optional<EffectSession> session_;
};

TEST_F(Session, RendersFramesInAnyOrder) {
  Open();
  const auto first = Frame(0), third = Frame(2);
  EXPECT_NE(first, third);
  EXPECT_EQ(Frame(2), third);
  EXPECT_EQ(Frame(0), first);
}

/// Plans of one photo that differ in one thing each from the first.
std::vector<RenderPlan> Others(const RenderPlan& plan) {
  std::vector<RenderPlan> others(7, plan);
  others[1].format.size = {96, 64};
  others[2].Set("squarepixels", false);
  others[3].frames = 9;
  others[4].Set("filter", std::string("Filter: Triangle"));
  const ViewKey keys[] = {{0.0, {4.0, -0.2, 0.1}, "In: Linear", "Out: Ease Out"},
                          {0.3, {1.5, -0.1, 0.1}, "In: Linear", "Out: Ease Out"},
                          {1.0, {2.0, 0.2, 0.0}, "In: Ease In", "Out: Linear"}};
  others[5].SetViews(keys);
  others[6].format.sampleAspect = {4, 3};
  return others;
}

TEST_F(Session, AdoptsAnotherPlanAsIfItHadBegunWithIt) {
  for (const MotionLaw law : {MotionLaw::kLinear, MotionLaw::kFly}) {
    plan_.motion = law;
    plan_.Set("squarepixels", true);
    Open();
    EffectSession kept(KELTO_MODULE, plan_, OpenPhoto(plan_.photo), PixelLayout::kBGRA);
    const RenderPlan first = plan_;
    int changed = 0;
    const std::vector<RenderPlan> plans = Others(first);
    for (size_t pair = 0; pair < plans.size() * plans.size(); ++pair) {
      const RenderPlan &from = plans[pair / plans.size()], &to = plans[pair % plans.size()];
      ASSERT_TRUE(kept.Adopt(from));
      ASSERT_TRUE(kept.Adopt(to));
      plan_ = to;
      Open();
      const FrameView view = kept.Render(3);
      ASSERT_EQ(view.size, to.format.size);
      const std::vector<uint8_t> frame(view.pixels, view.pixels + view.rowBytes * view.size.height);
      ASSERT_TRUE(frame == Frame(3)) << "pair " << pair << ", law " << WordOf(law);
      plan_ = first;
      Open();
      changed += frame != Frame(3);
    }
    EXPECT_GE(changed, 6 * 7) << "the plans show different things";
  }
}

TEST_F(Session, AdoptsNothingThatTakesAnotherSession) {
  Open();
  const auto before = Frame(3);
  RenderPlan other = plan_;
  other.photo += "2";
  EXPECT_FALSE(session_->Adopt(other));
  other = plan_;
  other.motion = MotionLaw::kSteady;
  EXPECT_FALSE(session_->Adopt(other)) << "the effect would keep the keys between";
  other = plan_;
  other.settings.erase(other.settings.begin());
  EXPECT_FALSE(session_->Adopt(other)) << "what the effect begins with is not known";
  other = plan_;
  other.format.fields = FieldOrder::kTopFirst;
  EXPECT_FALSE(session_->Adopt(other)) << "the effect keeps how it was first asked";
  other = plan_;
  other.Set("levels", std::string("Levels: 0-255"));
  EXPECT_FALSE(session_->Adopt(other)) << "the photo is loaded otherwise";
  EXPECT_EQ(Frame(3), before);
}

TEST_F(Session, RefusesAPhotoThatTheEffectHasNoMemoryFor) {
  iplxSetMemoryLimit(1000);
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("memory"));
  iplxSetMemoryLimit(0);
  EXPECT_EQ(ErrorOfOpening(), "none");
}

TEST_F(Session, RefusesEntriesAndListsThatTheEffectDoesNotHave) {
  const RenderPlan good = plan_;
  plan_.Set("filter", std::string("Filter: Lens"));
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("Filter: Lens"));
  plan_ = good;
  plan_.Set("lens", std::string("Filter: Cubic"));
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("\"lens\""));
  plan_ = good;
  plan_.Set("size", std::string("Filter: Cubic"));
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("is not a list"));
  plan_ = good;
  plan_.SettingOf("invelocity").keys[1].value = std::string("In: Hold");
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("In: Hold"));
}

TEST_F(Session, RefusesValuesOfAnotherKindAndGroups) {
  const RenderPlan good = plan_;
  plan_.Set("filter", 3.0);
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("\"filter\" takes no value of this kind"));
  plan_ = good;
  plan_.Set("size", true);
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("\"size\" takes no value of this kind"));
  plan_ = good;
  plan_.Set("sizegroup", 1.0);
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("is a group"));
}

TEST_F(Session, ShowsTheVideoWhereItIsTheBackground) {
  ShowFarAwayOverVideo();
  plan_.over = folder_ / "grey.mkv";
  test::RunFfmpeg("-f lavfi -i color=0xC8C8C8:size=48x32:rate=25:duration=0.2 -c:v ffv1 " +
                  plan_.over);
  Open();
  for (const int32_t frame : {0, 3, 1}) EXPECT_NEAR(Frame(frame)[1], 200, 2) << frame;
}

TEST_F(Session, EveryFrameBeginsBlackWhereTheVideoIsMissing) {
  ShowFarAwayOverVideo();
  Open();
  const auto first = Frame(0);
  EXPECT_LE(first[1], 1);
  EXPECT_EQ(Frame(0), first) << "nothing of a frame is left for the next one";
}

TEST_F(Session, TakesChangesBetweenFrames) {
  Open();
  const auto target = Frame(2);
  session_->Change({"display", std::string("Display: Source"), {}, -1});
  const auto source = Frame(2);
  EXPECT_NE(target, source);
  session_->Change({"display", std::string("Display: Target"), {}, -1});
  EXPECT_EQ(Frame(2), target);
}

TEST_F(Session, StopsWhenAskedTo) {
  Open();
  bool stop = false;
  session_->SetAbortQuery([&] { return stop; });
  EXPECT_NO_THROW(session_->Render(0));
  stop = true;
  EXPECT_THROW(session_->Render(1), Error);
}

}  // namespace
}  // namespace kelto::host
