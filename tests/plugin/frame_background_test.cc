// What a render shows when there is no image: black over video, else the background colour.
#include <gtest/gtest.h>

#include "image/cache.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

class FrameBackground : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 16, kHeight = 8;

  FrameBackground()
      : input(kWidth, kHeight, hfxColorspaceYCbCr), output(kWidth, kHeight, hfxColorspaceYCbCr) {
    for (int32_t y = 0; y < kHeight; ++y) std::memset(input.row(y), 0x50 + y, 2 * kWidth);
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    instance.settings.display = 1;
    // A grey: red, green and blue are 153 of 255.
    for (double& channel : instance.settings.backgroundColor) channel = 0.6;
  }
  /// Renders and expects every pixel of the frame to be a grey of `luma`.
  void ExpectGreyFrame(int32_t luma) {
    EXPECT_TRUE(instance.RenderFrame({0, 0, kWidth - 1, kHeight - 1}));
    const auto bytes = output.Packed();
    for (size_t i = 0; i < bytes.size(); i += 2) {
      ASSERT_EQ(bytes[i], luma) << "byte " << i;
      ASSERT_EQ(bytes[i + 1], 128) << "byte " << i + 1;
    }
  }

  Instance instance;
  Picture input, output;
};

TEST_F(FrameBackground, OverVideoAMissingImageIsBlackOfTheSourcesLevelsNotTheInput) {
  instance.settings.compositeOver = 1;
  ExpectGreyFrame(16);
  instance.settings.levels = 1;
  ExpectGreyFrame(0);
}

TEST_F(FrameBackground, OverAColourAMissingImageIsThatColour) {
  instance.settings.compositeOver = 0;
  for (const int32_t levels : {0, 1}) {
    instance.settings.levels = levels;
    ExpectGreyFrame(153);
  }
}

TEST_F(FrameBackground, AnImageThatCannotBeLoadedIsAMissingOne) {
  const test::TempFolder folder;
  instance.SetPath(folder / "gone.bmp");
  instance.settings.compositeOver = 1;
  ExpectGreyFrame(16);
  EXPECT_TRUE(instance.picture.loadFailed);
  instance.settings.compositeOver = 0;
  ExpectGreyFrame(153);
}

TEST_F(FrameBackground, AnImageWithoutPixelsIsAMissingOne) {
  instance.picture.workImages[0].reset(NewCachedImageHeader(64, 32));
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  instance.settings.compositeOver = 1;
  ExpectGreyFrame(16);
  instance.settings.compositeOver = 0;
  ExpectGreyFrame(153);
}

TEST_F(FrameBackground, OverVideoALoadedImageIsShownWithTheInputAroundIt) {
  const test::TempFolder folder;
  test::WritePhoto(folder / "p.bmp", 32, 16, [](int32_t, int32_t) {
    return test::Rgb{255, 255, 255};
  });
  instance.host().displayAspect = 2.0;
  instance.SetPath(folder / "p.bmp");
  instance.settings.compositeOver = 1;
  for (const double t : {0.0, 1.0}) instance.SetKey("size", t, 0.5);
  EXPECT_TRUE(instance.RenderFrame({0, 0, kWidth - 1, kHeight - 1}));
  EXPECT_EQ(std::memcmp(output.row(0), input.row(0), 2 * kWidth), 0);
  EXPECT_EQ(output.row(kHeight / 2)[kWidth], 235) << "the middle: white in studio range";
}

}  // namespace
}  // namespace kelto
