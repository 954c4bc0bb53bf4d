// ReloadImage: loading anew, then reducing and keeping the budget.
#include <gtest/gtest.h>

#include "image/studio_levels.h"
#include "state/module.h"
#include "tests/image/load_fixture.h"

namespace kelto {
namespace {

using test::FakePicture;
using test::Instance;
using test::Output;

class Reload : public test::LoadingTest {
 protected:
  Reload() {
    instance.render.playMode = hfxPlayModePreview;
    instance.render.outputWidth = output.GetWidth();
    instance.render.outputHeight = output.GetHeight();
    hfx::SetOutput(instance, 0, &output);
  }

  hfxImage output = Output(72, 48);
};

TEST_F(Reload, TheImageIsLoadedThenReducedForPlaying) {
  PutPicture("/pics/a.jpg", FakePicture::Flat(200, 150, 60, 60, 60));
  EXPECT_TRUE(ReloadImage(instance, false));
  EXPECT_EQ(instance.picture.workImages[0]->width, 72);
  EXPECT_EQ(instance.picture.workImages[0]->height, 54);
  EXPECT_EQ(instance.picture.imageWidth, 200u);
  EXPECT_EQ(instance.picture.cacheState, 0);
  EXPECT_EQ(PixelAt(40, 30)[0], studioLevelTable[60]);
}

TEST_F(Reload, ForAFinalRenderTheNaturalSizeStays) {
  instance.render.playMode = hfxPlayModeRender;
  PutPicture("/pics/a.jpg", FakePicture::Flat(200, 150, 60, 60, 60));
  EXPECT_TRUE(ReloadImage(instance, false));
  EXPECT_EQ(instance.picture.workImages[0]->width, 200);
  EXPECT_EQ(instance.picture.cacheState, 1);
}

TEST_F(Reload, AllEightWorkingImagesAreReleasedFirst) {
  for (int level = 0; level < kCacheLevels; ++level) instance.Hold(10, 10, level);
  PutPicture("/pics/a.jpg", FakePicture::Flat(20, 20, 60, 60, 60));
  uint64_t whileDrawing = 0;
  disk.whileDrawing = [&] { whileDrawing = iplxAllocatedBytes(); };
  EXPECT_TRUE(ReloadImage(instance, false));
  EXPECT_EQ(whileDrawing, 20u * 20 * 4);
  for (int level = 1; level < kCacheLevels; ++level)
    EXPECT_EQ(instance.picture.workImages[level], nullptr);
}

TEST_F(Reload, AFailedLoadLeavesNothingLoaded) {
  instance.Hold(10, 10);
  instance.picture.imagePath = "/gone.jpg";
  EXPECT_FALSE(ReloadImage(instance, false));
  EXPECT_TRUE(instance.empty());
}

TEST_F(Reload, AFailedLoadKeepsTheBudgetAllTheSame) {
  Instance first, second;
  first.Hold(1024, 2560);    // 10 MiB
  second.Hold(1024, 30720);  // 120 MiB
  instance.picture.imagePath = "/gone.jpg";
  EXPECT_FALSE(ReloadImage(instance, false));
  EXPECT_TRUE(first.empty());
  EXPECT_FALSE(second.empty()) << "within the budget by itself";
}

TEST_F(Reload, TheFlagReachesTheDialog) {
  instance.picture.imagePath = "/gone.jpg";
  EXPECT_FALSE(ReloadImage(instance, false));
  EXPECT_EQ(network.dialogs, 0);
  EXPECT_FALSE(ReloadImage(instance, true));
  EXPECT_EQ(network.dialogs, 1);
}

TEST_F(Reload, A121MebibyteImageReleasesTheOthersAndStays) {
  Instance other;
  other.Hold(1024, 2560);  // 10 MiB
  instance.render.playMode = hfxPlayModeRender;
  PutPicture("/pics/a.jpg", FakePicture::Flat(1024, 30976, 60, 60, 60));
  EXPECT_TRUE(ReloadImage(instance, false));
  EXPECT_TRUE(other.empty());
  EXPECT_FALSE(instance.empty());
  EXPECT_EQ(Module().cachedBytes, 121u * 1024 * 1024);
}

TEST_F(Reload, TheBudgetIsCheckedOnceTheImageIsReduced) {
  Instance other;
  other.Hold(1024, 2560);  // 10 MiB
  PutPicture("/pics/a.jpg", FakePicture::Flat(1024, 30976, 60, 60, 60));
  EXPECT_TRUE(ReloadImage(instance, false));
  EXPECT_FALSE(other.empty()) << "the reduced copy fits beside it";
}

}  // namespace
}  // namespace kelto
