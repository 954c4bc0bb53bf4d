#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "tests/runtime/ipl/fixture.h"

namespace kelto {
namespace {

using YCrCb = IplTest;

Image NewFilled(int32_t channels, const char* sequence, int32_t width, int32_t height,
                int32_t fill = 0) {
  Image image = NewHeader(channels, "RGBA", sequence, IPL_ALIGN_QWORD, width, height);
  iplAllocateImage(image.get(), 1, fill);
  return image;
}

uint8_t* Pixel(const IplImage& image, int32_t x, int32_t y) {
  void* bytes = image.imageData + ptrdiff_t{y} * image.widthStep + ptrdiff_t{x} * image.nChannels;
  return static_cast<uint8_t*>(bytes);
}

/// Nearest level to whole ten-thousandths, halves upwards, in integers only.
uint8_t Nearest(int tenThousandths) {
  return static_cast<uint8_t>(std::clamp((tenThousandths + 5000) / 10000, 0, 255));
}

std::array<uint8_t, 3> Expected(int r, int g, int b) {
  return {Nearest(2989 * r + 5866 * g + 1145 * b), Nearest(5000 * r - 4183 * g - 816 * b + 1280000),
          Nearest(-1687 * r - 3312 * g + 5000 * b + 1280000)};
}

TEST_F(YCrCb, EveryColourComesOutExactlyRounded) {
  const Image rgb = NewFilled(4, "BGRA", 4096, 16), ycrcb = NewFilled(3, "YCr", 4096, 16);
  for (int red = 0; red < 256; ++red) {
    for (int i = 0; i < 65536; ++i) {
      uint8_t* pixel = Pixel(*rgb, i % 4096, i / 4096);
      pixel[0] = static_cast<uint8_t>(i);
      pixel[1] = static_cast<uint8_t>(i >> 8);
      pixel[2] = static_cast<uint8_t>(red);
    }
    iplRGB2YCrCb(rgb.get(), ycrcb.get());
    int wrong = 0;
    for (int i = 0; i < 65536; ++i) {
      const auto expected = Expected(red, i >> 8, i & 255);
      wrong += !std::equal(expected.begin(), expected.end(), Pixel(*ycrcb, i % 4096, i / 4096));
    }
    ASSERT_EQ(wrong, 0) << "red " << red;
  }
}

TEST_F(YCrCb, GreysHaveNoColour) {
  const Image rgb = NewFilled(3, "RGB", 256, 1), ycrcb = NewFilled(3, "YCr", 256, 1);
  for (int i = 0; i < 256; ++i) std::fill_n(Pixel(*rgb, i, 0), 3, static_cast<uint8_t>(i));
  iplRGB2YCrCb(rgb.get(), ycrcb.get());
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(Pixel(*ycrcb, i, 0)[0], i);
    EXPECT_EQ(Pixel(*ycrcb, i, 0)[1], 128);
    EXPECT_EQ(Pixel(*ycrcb, i, 0)[2], 128);
  }
}

TEST_F(YCrCb, PureRedAndBlueSaturateTheirChroma) {
  const Image rgb = NewFilled(3, "RGB", 2, 1), ycrcb = NewFilled(3, "YCr", 2, 1);
  Pixel(*rgb, 0, 0)[0] = 255;
  Pixel(*rgb, 1, 0)[2] = 255;
  iplRGB2YCrCb(rgb.get(), ycrcb.get());
  EXPECT_EQ(Pixel(*ycrcb, 0, 0)[1], 255);
  EXPECT_EQ(Pixel(*ycrcb, 1, 0)[2], 255);
}

TEST_F(YCrCb, TheSourceIsReadThroughItsChannelSequence) {
  const int r = 200, g = 90, b = 30;
  for (const std::string sequence : {"RGBA", "BGRA", "ARGB", "ABGR", "GBR", "RGB", "BGR"}) {
    const int channels = static_cast<int>(sequence.size());
    // Wider than the block that the library works in, and no multiple of it.
    const Image rgb = NewFilled(channels, sequence.c_str(), 1111, 3, 77);
    const Image ycrcb = NewFilled(3, "YCr", 1111, 3);
    for (int y = 0; y < 3; ++y) {
      for (int x = 0; x < 1111; ++x) {
        Pixel(*rgb, x, y)[sequence.find('R')] = r;
        Pixel(*rgb, x, y)[sequence.find('G')] = g;
        Pixel(*rgb, x, y)[sequence.find('B')] = b;
      }
    }
    iplRGB2YCrCb(rgb.get(), ycrcb.get());
    ASSERT_EQ(iplGetErrStatus(), IPL_StsOk);
    const auto expected = Expected(r, g, b);
    for (const auto& [x, y] : {std::pair{0, 0}, {511, 1}, {512, 1}, {1110, 2}}) {
      EXPECT_TRUE(std::equal(expected.begin(), expected.end(), Pixel(*ycrcb, x, y)))
          << sequence << " at " << x << ", " << y;
    }
  }
}

TEST_F(YCrCb, AFourthChannelAndRowPaddingAreLeftAlone) {
  const Image rgb = NewFilled(4, "BGRA", 3, 2), ycrcb = NewFilled(4, "MSI", 3, 2, 0x11);
  iplRGB2YCrCb(rgb.get(), ycrcb.get());
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) EXPECT_EQ(Pixel(*ycrcb, x, y)[3], 0x11);
    EXPECT_EQ(std::count(Pixel(*ycrcb, 3, y), Pixel(*ycrcb, 4, y), 0x11), 4) << "padding";
  }
}

TEST_F(YCrCb, UnsuitableImagesAreRefusedAndNothingIsWritten) {
  const Image rgb = NewFilled(4, "BGRA", 4, 4, 200), ycrcb = NewFilled(3, "YCr", 4, 4, 9);
  const auto status = [](const IplImage* source, IplImage* dest) {
    iplSetErrStatus(IPL_StsOk);
    iplRGB2YCrCb(source, dest);
    return iplGetErrStatus();
  };
  const Image bare = NewHeader(4, "RGBA", "BGRA", IPL_ALIGN_DWORD, 4, 4);
  EXPECT_EQ(status(nullptr, ycrcb.get()), IPL_StsNullPtr);
  EXPECT_EQ(status(rgb.get(), nullptr), IPL_StsNullPtr);
  EXPECT_EQ(status(bare.get(), ycrcb.get()), IPL_StsNullPtr);
  EXPECT_EQ(status(rgb.get(), bare.get()), IPL_StsNullPtr);
  EXPECT_EQ(status(NewFilled(4, "BGRA", 5, 4).get(), ycrcb.get()), IPL_BadImageSize);
  EXPECT_EQ(status(NewFilled(4, "BGRA", 4, 3).get(), ycrcb.get()), IPL_BadImageSize);
  EXPECT_EQ(status(NewFilled(2, "RG", 4, 4).get(), ycrcb.get()), IPL_BadNumChannels);
  EXPECT_EQ(status(rgb.get(), NewFilled(1, "Y", 4, 4).get()), IPL_BadNumChannels);
  EXPECT_EQ(status(NewFilled(3, "YCr", 4, 4).get(), ycrcb.get()), IPL_BadOrder);
  EXPECT_EQ(std::count(ycrcb->imageData, ycrcb->imageData + ycrcb->imageSize, 9),
            static_cast<ptrdiff_t>(ycrcb->imageSize));
}

}  // namespace
}  // namespace kelto
