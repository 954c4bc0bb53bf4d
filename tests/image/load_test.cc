// Loading a file that is where its path says.
#include "image/load.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "state/module.h"
#include "tests/image/load_fixture.h"
#include "tests/support/peak_memory.h"

namespace kelto {
namespace {

using test::FakePicture;
using testing::ElementsAre;

class Load : public test::LoadingTest {};

TEST_F(Load, WorkingImageZeroHoldsThePictureAtItsNaturalSize) {
  PutPicture("/pics/a.jpg", FakePicture::Flat(7, 5, 200, 100, 50));
  instance.settings.levels = 1;
  ASSERT_TRUE(LoadImage(instance, false));
  const IplImage* image = instance.picture.workImages[0].get();
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width, 7);
  EXPECT_EQ(image->height, 5);
  EXPECT_EQ(image->nChannels, 4);
  EXPECT_EQ(image->alphaChannel, 0);
  EXPECT_EQ(std::memcmp(image->colorModel, "MSI", 4), 0);
  EXPECT_EQ(std::memcmp(image->channelSeq, "MSI", 4), 0);
  EXPECT_EQ(image->align, 8);
  EXPECT_EQ(image->imageId, static_cast<BufferPool*>(&Module().cachePool));
  EXPECT_EQ(instance.picture.imageWidth, 7u);
  EXPECT_EQ(instance.picture.imageHeight, 5u);
  // Y, Cr, Cb of (200, 100, 50) by the BT.601 weights.
  for (const auto& [x, y] : {std::pair{0, 0}, {6, 0}, {3, 2}, {6, 4}}) {
    EXPECT_THAT(PixelAt(x, y), ElementsAre(124, 182, 86));
  }
  EXPECT_EQ(Module().cachedBytes, 32u * 5) << "nothing but the cached image is left";
  EXPECT_EQ(iplxAllocatedBytes(), 32u * 5);
}

TEST_F(Load, PixelsKeepTheirPlaces) {
  // Rows of an odd width lie closer together where they are decoded than where they are kept.
  for (const int16_t width : {6, 5}) {
    const int16_t height = 51 - 9 * (width - 5);
    FakePicture picture = FakePicture::Flat(width, height, 0, 0, 0);
    for (size_t i = 0; i < picture.bgra.size() / 4; ++i) {
      std::memset(&picture.bgra[4 * i], static_cast<int>(i), 3);
    }
    PutPicture("/pics/a.jpg", picture);
    instance.settings.levels = 1;
    ASSERT_TRUE(LoadImage(instance, false));
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        EXPECT_THAT(PixelAt(x, y), ElementsAre(width * y + x, 128, 128)) << x << ", " << y;
      }
    }
  }
}

TEST_F(Load, RgbLevelsAreCompressedToStudioRangeBeforeTheConversion) {
  PutPicture("/pics/white.png", FakePicture::Flat(4, 4, 255, 255, 255));
  instance.settings.levels = 0;
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_THAT(PixelAt(3, 3), ElementsAre(235, 128, 128));
  PutPicture("/pics/black.png", FakePicture::Flat(4, 4, 0, 0, 0));
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_THAT(PixelAt(3, 3), ElementsAre(16, 128, 128));
  PutPicture("/pics/red.png", FakePicture::Flat(4, 4, 255, 0, 0));
  ASSERT_TRUE(LoadImage(instance, false));
  // (235, 16, 16): Y 81.46, Cr 237.5, Cb 91.06.
  EXPECT_THAT(PixelAt(3, 3), ElementsAre(81, 238, 91));
}

TEST_F(Load, SixOhOneLevelsGoThroughUnchanged) {
  PutPicture("/pics/white.png", FakePicture::Flat(4, 4, 255, 255, 255));
  instance.settings.levels = 1;
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_THAT(PixelAt(0, 0), ElementsAre(255, 128, 128));
  PutPicture("/pics/black.png", FakePicture::Flat(4, 4, 0, 0, 0));
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_THAT(PixelAt(0, 0), ElementsAre(0, 128, 128));
}

TEST_F(Load, BoundsThatDoNotStartAtTheOriginStillGiveTheSize) {
  PutPicture("/pics/a.jpg", FakePicture::Flat(9, 4, 10, 10, 10, -20, 300));
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.imageWidth, 9u);
  EXPECT_EQ(instance.picture.imageHeight, 4u);
  EXPECT_EQ(instance.picture.workImages[0]->width, 9);
  EXPECT_EQ(instance.picture.workImages[0]->height, 4);
}

TEST_F(Load, APathThatOpensAtOnceIsRememberedAsAKnownFolder) {
  PutPicture("/pics/mine/a.jpg", FakePicture::Flat(2, 2, 1, 1, 1));
  ASSERT_TRUE(LoadImage(instance, true));
  EXPECT_EQ(Module().knownFolders.size(), 1u);
  EXPECT_EQ(network.dialogs, 0);
  EXPECT_EQ(SavedPath(), "nothing saved") << "the path is what it was";
}

TEST_F(Load, TheNetworkFormOfThePathIsOpenedAndSaved) {
  network.universalNames["Z:\\a.jpg"] = "\\\\server\\pics\\a.jpg";
  disk.files["\\\\server\\pics\\a.jpg"] = FakePicture::Flat(2, 2, 1, 1, 1);
  instance.picture.imagePath = "Z:\\a.jpg";
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.imagePath, "\\\\server\\pics\\a.jpg");
  EXPECT_EQ(SavedPath(), "\\\\server\\pics\\a.jpg");
  EXPECT_TRUE(hfx::InstanceDataModified(instance));
}

TEST_F(Load, TheNetworkFormStaysSavedWhenTheLoadThenFails) {
  network.universalNames["Z:\\a.jpg"] = "\\\\server\\pics\\a.jpg";
  instance.picture.imagePath = "Z:\\a.jpg";
  EXPECT_FALSE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.imagePath, "\\\\server\\pics\\a.jpg");
  EXPECT_EQ(SavedPath(), "\\\\server\\pics\\a.jpg");
}

TEST_F(Load, ThePictureIsDrawnStraightIntoTheLibrarysMemory) {
  PutPicture("/pics/a.jpg", FakePicture::Flat(100, 100, 1, 2, 3));
  uint64_t whileDrawing = 0;
  disk.whileDrawing = [&] { whileDrawing = iplxAllocatedBytes(); };
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(whileDrawing, 100u * 100 * 4) << "one image, and no copy beside it";
  EXPECT_THAT(disk.calls, ElementsAre("Open", "GetNaturalBounds", "NewGWorld", "SetGWorld", "Draw",
                                      "Close", "Dispose"));
}

TEST_F(Load, OnlyThePictureThatIsKeptTakesMemory) {
  FakePicture picture = FakePicture::Flat(4001, 1, 1, 2, 3);
  picture.bounds.bottom = 4000;
  PutPicture("/pics/large.jpg", picture);
  const test::PeakMemory peak;
  ASSERT_TRUE(LoadImage(instance, false));
  const int64_t kept = Module().cachedBytes >> 20;
  EXPECT_EQ(kept, 61);
  EXPECT_LT(peak.MiB(), kept * 13 / 10);
}

TEST_F(Load, NoMoreThanTwoFullSizeImagesAreCountedAtATime) {
  PutPicture("/pics/a.jpg", FakePicture::Flat(100, 100, 1, 2, 3));
  iplxSetMemoryLimit(100 * 100 * 4 + 100 * 304);
  EXPECT_TRUE(LoadImage(instance, false));
  EXPECT_TRUE(console.empty());
}

TEST_F(Load, AnImageThatIsStillLoadedIsReplaced) {
  instance.Hold(50, 50);
  PutPicture("/pics/a.jpg", FakePicture::Flat(4, 4, 1, 2, 3));
  ASSERT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.workImages[0]->width, 4);
  EXPECT_EQ(Module().cachedBytes, 64u);
}

TEST_F(Load, SavedPathsAreCutToTheRecord) {
  instance.picture.imagePath = std::string(3000, 'p');
  SaveImagePath(instance);
  EXPECT_EQ(SavedPath(), std::string(2047, 'p'));
}

}  // namespace
}  // namespace kelto
