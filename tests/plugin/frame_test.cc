// What a render loads, keeps and reports, step by step.
#include "plugin/frame.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "image/cache.h"
#include "platform/win32.h"
#include "plugin/update_params.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

BOOL KELTO_WINAPI MustNotAsk(OPENFILENAMEA*) {
  ADD_FAILURE() << "a render must not ask";
  return 0;
}

class Frame : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 32, kHeight = 18;

  Frame()
      : input(kWidth, kHeight, hfxColorspaceYCbCr), output(kWidth, kHeight, hfxColorspaceYCbCr) {
    test::WritePhoto(photo, 64, 36, [](int32_t x, int32_t) {
      return x < 32 ? test::Rgb{20, 20, 20} : test::Rgb{220, 220, 220};
    });
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    instance.settings.display = 1;
    instance.SetPath(photo);
  }
  bool Render(int32_t playMode = hfxPlayModeRender) {
    instance.render.playMode = playMode;
    return instance.RenderFrame({0, 0, kWidth - 1, kHeight - 1});
  }

  test::TempFolder folder;
  const std::string photo = folder / "photo.bmp";
  Instance instance;
  Picture input, output;
};

TEST_F(Frame, LoadsTheImageOfTheSavedPathOnce) {
  EXPECT_TRUE(Render());
  const IplImage* loaded = instance.picture.workImages[0].get();
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(instance.render.outputWidth, kWidth);
  EXPECT_EQ(instance.render.outputHeight, kHeight);
  std::filesystem::remove(photo);
  Render();
  EXPECT_EQ(instance.picture.workImages[0].get(), loaded);
}

TEST_F(Frame, OtherLevelsReloadTheImage) {
  Render();
  const uint8_t dark = output.row(9)[0];
  instance.settings.levels = 1;
  Render();
  EXPECT_LT(output.row(9)[0], dark) << "not compressed to studio range any more";
  EXPECT_EQ(instance.picture.appliedLevels, 1);
}

TEST_F(Frame, PlayingReducesTheImageAndRenderingReloadsIt) {
  Render(hfxPlayModePreview);
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(instance.picture.workImages[0]->width, kWidth);
  EXPECT_EQ(instance.picture.cacheState, 0);
  Render(hfxPlayModeRender);
  EXPECT_EQ(instance.picture.workImages[0]->width, 64);
  EXPECT_EQ(instance.picture.cacheState, 1);
}

TEST_F(Frame, ALoadCarriesOutTheCacheModeOfItsTime) {
  instance.settings.cacheMode = kCacheVideoResolution;
  Render();
  EXPECT_EQ(instance.picture.appliedCacheMode, kCacheVideoResolution);
  const IplImage* loaded = instance.picture.workImages[0].get();
  ApplyCacheCommand(instance, false);
  EXPECT_EQ(instance.picture.workImages[0].get(), loaded) << "nothing is left to carry out";
}

TEST_F(Frame, AFailedLoadIsNotTriedAgainAndOpensNoDialog) {
  win32().GetOpenFileNameA = MustNotAsk;
  std::filesystem::remove(photo);
  EXPECT_TRUE(Render()) << "the background is still a frame";
  EXPECT_TRUE(instance.picture.loadFailed);
  test::WritePhoto(photo, 8, 8, [](int32_t, int32_t) { return test::Rgb{1, 1, 1}; });
  Render();
  EXPECT_EQ(instance.picture.workImages[0], nullptr);
  win32() = DefaultWin32Calls();
}

TEST_F(Frame, WithoutARecordNothingIsLoadedAndTheBackgroundShows) {
  hfx::ClearInstanceData(instance);
  EXPECT_TRUE(Render());
  EXPECT_EQ(instance.picture.workImages[0], nullptr);
  EXPECT_FALSE(instance.picture.loadFailed);
  EXPECT_EQ(output.row(0)[0], output.row(kHeight - 1)[0]);
}

TEST_F(Frame, OnlyAnAbortedRenderReportsFailure) {
  EXPECT_TRUE(Render());
  instance.host().aborted = true;
  EXPECT_FALSE(Render());
}

TEST_F(Frame, TheMotionIsPreparedOnceAfterEveryChange) {
  instance.SetPosition(0.0, 0.0, 0.0);
  instance.SetPosition(1.0, 0.5, 0.0);
  for (const double t : {0.0, 1.0}) instance.SetVelocities(t, 0, 0);
  EXPECT_TRUE(instance.paramsChanged);
  Render();
  EXPECT_FALSE(instance.paramsChanged);
  ASSERT_TRUE(instance.motion);
  const ArcEntry* table = instance.motion->Table().Entries().data();
  Render();
  EXPECT_EQ(instance.motion->Table().Entries().data(), table) << "kept while nothing changes";
  instance.SetPosition(0.5, 0.5, 0.5);
  instance.paramsChanged = true;
  Render();
  EXPECT_EQ(instance.motion->Table().Entries().size(), 3u);
}

TEST_F(Frame, AOneFrameEffectShowsItsFirstKey) {
  instance.host().totalFrames = 1;
  instance.SetKey("size", 0.0, 2.0);
  instance.SetKey("size", 1.0, 4.0);
  for (const double t : {0.0, 1.0}) {
    instance.SetPosition(t, 0.1, 0.2);
    instance.SetVelocities(t, 1, 1);
  }
  Render();
  EXPECT_EQ(instance.settings.view.zoom, 2.0);
  EXPECT_EQ(instance.settings.view.centreX, 0.1);
}

TEST_F(Frame, ProgressiveVideoSetsTheProgressiveSwitch) {
  instance.host().videoType = hfxVideoType525;
  Render();
  EXPECT_FALSE(instance.settings.progressive);
  instance.host().videoType = hfxVideoTypeProgressive;
  Render();
  EXPECT_TRUE(instance.settings.progressive);
}

}  // namespace
}  // namespace kelto
