// ReduceToVideoResolution: when, to what size and how the natural size is given up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "resample/job.h"
#include "state/module.h"
#include "tests/image/instance.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::Instance;
using test::Output;
using testing::ElementsAre;

/// One instance that plays (no final render) into an output of 720 x 486.
class Reduction : public test::ImageTest {
 protected:
  Reduction() {
    instance.render.playMode = hfxPlayModePreview;
    SetOutput(720, 486);
  }

  void SetOutput(int32_t width, int32_t height) {
    output = Output(width, height);
    instance.render.outputWidth = width;
    instance.render.outputHeight = height;
    hfx::SetOutput(instance, 0, &output);
  }

  /// Loads a grey image of this size and reduces it; the size that is cached then.
  std::pair<int32_t, int32_t> SizeAfter(int32_t width, int32_t height) {
    ReleaseWorkImages(instance);
    IplImage* image = instance.Hold(width, height);
    std::memset(image->imageData, 128, image->imageSize);
    ReduceToVideoResolution(instance);
    return {instance.picture.workImages[0]->width, instance.picture.workImages[0]->height};
  }

  using Size = std::pair<int32_t, int32_t>;

  Instance instance;
  hfxImage output = Output(720, 486);
};

TEST_F(Reduction, AnImageAsWideAsTheOutputMinusOneIsReduced) {
  EXPECT_EQ(SizeAfter(719, 100), Size(720, 100));
  EXPECT_EQ(instance.picture.cacheState, 0);
}

TEST_F(Reduction, AnImageAsHighAsTheOutputMinusOneIsReduced) {
  EXPECT_EQ(SizeAfter(100, 485), Size(100, 486));
  EXPECT_EQ(instance.picture.cacheState, 0);
}

TEST_F(Reduction, AnImageBelowTheOutputMinusOneBothWaysKeepsItsNaturalSize) {
  EXPECT_EQ(SizeAfter(718, 484), Size(718, 484));
  EXPECT_EQ(instance.picture.cacheState, 1);
}

TEST_F(Reduction, ALandscapeImageIsMatchedOnWidthAndMayStayTallerThanTheOutput) {
  EXPECT_EQ(SizeAfter(1000, 900), Size(720, 648));
}

TEST_F(Reduction, APortraitImageIsMatchedOnHeight) {
  EXPECT_EQ(SizeAfter(800, 2000), Size(194, 486));
}

TEST_F(Reduction, ASquareImageIsMatchedOnHeight) { EXPECT_EQ(SizeAfter(600, 600), Size(486, 486)); }

TEST_F(Reduction, SizesAgreeWithTheReferenceResults) {
  int carriedOut = 0;
  for (const auto& c : test::Vectors()["reduced_sizes"]) {
    const int32_t width = c["width"], height = c["height"];
    const int32_t outputWidth = c["output_width"], outputHeight = c["output_height"];
    const Size expected(c["new_width"], c["new_height"]);
    if (int64_t{width} * height > 2000000) continue;  // the largest take seconds
    SetOutput(outputWidth, outputHeight);
    EXPECT_EQ(SizeAfter(width, height), expected);
    ++carriedOut;
  }
  EXPECT_GT(carriedOut, 5);
}

TEST_F(Reduction, PixelsAgreeWithTheReferenceResults) {
  int compared = 0;
  for (const auto& c : test::Vectors()["reduce"]) {
    if (c["mode"] != kFilterHiQual) continue;
    ++compared;
    const int32_t width = c["width"], height = c["height"];
    SetOutput(c["new_width"], 10);
    IplImage* image = instance.Hold(width, height);
    const auto pixels = test::Bytes(c["image"]);
    ASSERT_EQ(pixels.size(), image->imageSize);
    std::memcpy(image->imageData, pixels.data(), pixels.size());
    ReduceToVideoResolution(instance);

    const IplImage& reduced = *instance.picture.workImages[0];
    ASSERT_EQ(reduced.height, c["new_height"]);
    const auto expected = test::Bytes(c["out"]);
    const int32_t rowBytes = 4 * reduced.width;
    for (int32_t i = 0; i < rowBytes * reduced.height; ++i) {
      const char* row = reduced.imageData + i / rowBytes * reduced.widthStep;
      ASSERT_LE(std::abs(static_cast<uint8_t>(row[i % rowBytes]) - expected[i]), 1) << i;
    }
  }
  EXPECT_GT(compared, 0);
}

TEST_F(Reduction, AFinalRenderCachesTheNaturalSizeOfEvenAHugeImage) {
  instance.render.playMode = hfxPlayModeRender;
  EXPECT_EQ(SizeAfter(4000, 3000), Size(4000, 3000));
  EXPECT_EQ(instance.picture.cacheState, 1);
}

TEST_F(Reduction, BeforeTheHostReportsAnOutputSizeTheNaturalSizeIsCached) {
  instance.render.outputHeight = 0;
  EXPECT_EQ(SizeAfter(4000, 3000), Size(4000, 3000));
  EXPECT_EQ(instance.picture.cacheState, 1);
  instance.render.outputHeight = 486;
  instance.render.outputWidth = 0;
  EXPECT_EQ(SizeAfter(4000, 3000), Size(4000, 3000));
}

TEST_F(Reduction, AnOutputOfOnePixelIsNeverWiderThanAnImage) {
  SetOutput(1, 1);
  EXPECT_EQ(SizeAfter(1, 1), Size(1, 1));
  EXPECT_EQ(instance.picture.cacheState, 0);
}

TEST_F(Reduction, NothingLoadedChangesNothing) {
  ReduceToVideoResolution(instance);
  EXPECT_EQ(instance.picture.cacheState, -1);
  EXPECT_TRUE(instance.empty());
}

TEST_F(Reduction, WithoutAnOutputImageNothingChanges) {
  hfx::SetOutput(instance, 0, nullptr);
  EXPECT_EQ(SizeAfter(1000, 900), Size(1000, 900));
  EXPECT_EQ(instance.picture.cacheState, -1);
}

TEST_F(Reduction, TheReducedCopyTakesTheNaturalImagesPlaceInTheAccount) {
  SizeAfter(1440, 972);
  const IplImage& reduced = *instance.picture.workImages[0];
  EXPECT_EQ(Module().cachedBytes, 720u * 486 * 4);
  EXPECT_EQ(iplxAllocatedBytes(), 720u * 486 * 4);
  EXPECT_EQ(reduced.imageId, static_cast<BufferPool*>(&Module().cachePool));
  EXPECT_EQ(reduced.nChannels, 4);
  EXPECT_EQ(reduced.align, 8);
  EXPECT_EQ(instance.picture.imageWidth, 1440u) << "the natural size is remembered";
}

TEST_F(Reduction, WhenMemoryRunsOutTheNaturalSizeStays) {
  instance.picture.cacheState = 1;
  iplxSetMemoryLimit(1440 * 972 * 4 + 1000);
  EXPECT_EQ(SizeAfter(1440, 972), Size(1440, 972));
  EXPECT_EQ(instance.picture.cacheState, 1) << "left as it was";
  EXPECT_EQ(Module().cachedBytes, 1440u * 972 * 4);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_THAT(console, ElementsAre(ReclaimMessage(instance)));
}

TEST_F(Reduction, ASizeThatNoImageCanHaveLeavesTheNaturalOne) {
  // The host's image and its reported size need not agree; 2^31 bytes are too many.
  output = Output(1 << 29, 486);
  EXPECT_EQ(SizeAfter(1000, 900), Size(1000, 900));
  EXPECT_EQ(instance.picture.cacheState, -1);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  EXPECT_TRUE(console.empty());
}

}  // namespace
}  // namespace kelto
