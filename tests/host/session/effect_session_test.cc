#include "host/session/effect_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "host/error.h"
#include "platform/ipl.h"
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
    plan_.keys = {{0.0, {1.0, 0.0, 0.0}, "In: Linear", "Out: Linear"},
                  {1.0, {3.0, 0.1, 0.1}, "In: Linear", "Out: Linear"}};
    plan_.lists = {{"display", "Display: Target"}, {"filter", "Filter: Cubic"}};
  }
  void TearDown() override {
    session_.reset();
    iplxSetMemoryLimit(0);
    hfx::SetConsole({});
  }

  void Open() { session_.emplace(KELTO_MODULE, plan_, OpenPhoto(plan_.photo), PixelLayout::kBGRA); }
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

TEST_F(Session, RefusesAPhotoThatTheEffectHasNoMemoryFor) {
  iplxSetMemoryLimit(1000);
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("memory"));
  iplxSetMemoryLimit(0);
  EXPECT_EQ(ErrorOfOpening(), "none");
}

TEST_F(Session, RefusesEntriesAndListsThatTheEffectDoesNotHave) {
  const RenderPlan good = plan_;
  plan_.lists = {{"filter", "Filter: Lens"}};
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("Filter: Lens"));
  plan_.lists = {{"lens", "Filter: Cubic"}};
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("\"lens\""));
  plan_.lists = {{"size", "Filter: Cubic"}};
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("is not a list"));
  plan_ = good;
  plan_.keys[1].arrival = "In: Hold";
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("In: Hold"));
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
