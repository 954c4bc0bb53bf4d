// A slideshow's frames in any order, as a player asks for them.
#include "host/jobs/show_film.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "catalogue/parameters.h"
#include "host/frames/effect_session.h"
#include "host/plan/default_plan.h"
#include "runtime/hfx/host.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::ElementsAre;

/// Three pictures of one shade each, of 4, 5 and 3 frames, that fade for two frames and for one.
class ShowOfShades : public testing::Test {
 protected:
  ShowOfShades() {
    hfx::SetConsole([](const std::string&) {});
    const int32_t frames[] = {4, 5, 3};
    for (size_t i = 0; i < 3; ++i) {
      const std::string photo = folder_ / (std::to_string(i) + ".bmp");
      const auto level = static_cast<uint8_t>(60 + 60 * i);
      test::WritePhoto(photo, 60, 40, [level](int32_t, int32_t) {
        return test::Rgb{level, level, level};
      });
      RenderPlan plan = DefaultPlan(photo);
      plan.format.size = {48, 32};
      plan.frames = frames[i];
      scenes_.plans.push_back(plan);
      scenes_.photos.push_back(OpenPhoto(photo));
    }
    scenes_.fades = {2, 1};
  }
  void TearDown() override { hfx::SetConsole({}); }

  static int Shade(ShowFilm& film, int32_t number) {
    return film.Render(number, 1.0).Row(16)[4 * 24];
  }

  test::TempFolder folder_;
  ShowScenes scenes_;
};

TEST_F(ShowOfShades, BeginsEachPictureWhereTheOneBeforeFades) {
  EXPECT_THAT(BeginningsOf(scenes_.plans, scenes_.fades), ElementsAre(0, 2, 6, 9));
}

TEST_F(ShowOfShades, FadesBetweenPictures) {
  ShowFilm film(KELTO_MODULE, scenes_);
  std::vector<int> shades;
  for (int32_t number = 0; number < 9; ++number) shades.push_back(Shade(film, number));
  const int expected[] = {60, 60, 80, 100, 120, 120, 150, 180, 180};
  for (size_t i = 0; i < shades.size(); ++i) EXPECT_NEAR(shades[i], expected[i], 3) << i;
}

TEST_F(ShowOfShades, GivesTheSameFramesInAnyOrder) {
  ShowFilm film(KELTO_MODULE, scenes_), other(KELTO_MODULE, scenes_);
  std::vector<int> shades;
  for (int32_t number = 0; number < 9; ++number) shades.push_back(Shade(film, number));
  for (const int32_t number : {8, 3, 0, 6, 2, 7, 1, 5, 4}) {
    EXPECT_EQ(Shade(other, number), shades[static_cast<size_t>(number)]) << number;
  }
}

#if !defined(_WIN32)  // which draws no letters
TEST_F(ShowOfShades, BeginsWithItsTitle) {
  scenes_.title = {"I", 6, 2};
  ShowFilm film(KELTO_MODULE, scenes_);
  // Beside the letter.
  const auto shade = [&](int32_t number) { return int{film.Render(number, 1.0).Row(2)[4 * 2]}; };
  const int expected[] = {0, 0, 0, 0, 20, 40, 80, 100, 120};
  for (int32_t i = 0; i < 9; ++i) EXPECT_NEAR(shade(i), expected[i], 3) << i;
  const auto brightest = [&](int32_t number) {
    const FrameView frame = film.Render(number, 1.0);
    int most = 0;
    for (int32_t row = 0; row < 32; ++row) {
      for (int32_t x = 0; x < 48; ++x) most = std::max(most, int{frame.Row(row)[4 * x]});
    }
    return most;
  };
  EXPECT_LT(brightest(0), 20) << "the letters come softly";
  EXPECT_GT(brightest(3), 30);
}
#endif

TEST_F(ShowOfShades, KeepsAChangeForPicturesThatCome) {
  for (RenderPlan& plan : scenes_.plans) {
    plan.Set(key::kDisplay, std::string(entry::kDisplayTarget));
  }
  ShowFilm film(KELTO_MODULE, scenes_);
  Shade(film, 0);
  const Setting source{key::kDisplay, std::string("Display: Source"), {}, -1};
  film.Change(source);
  const FrameView late = film.Render(8, 1.0);
  EffectSession alone(KELTO_MODULE, scenes_.plans[2], scenes_.photos[2], PixelLayout::kBGRA);
  alone.Change(source);
  const FrameView expected = alone.Render(2);
  for (int32_t row = 0; row < 32; ++row) {
    EXPECT_EQ(0, memcmp(late.Row(row), expected.Row(row), size_t{48} * 4)) << row;
  }
}

}  // namespace
}  // namespace kelto::host
