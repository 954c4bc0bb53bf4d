#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include "platform/pxcfx.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using Pixels = std::vector<uint8_t>;

pxcImage Bgra(Pixels& pixels, int32_t width, int32_t height) {
  return {width, height, "BGRA", pixels.data(), pxcComponent8U, pxcColorSpaceRGB};
}

pxcImage Packed(Pixels& pixels, int32_t width, int32_t height) {
  return {width, height, "Y422", pixels.data(), pxcComponent8U, pxcColorSpaceYCbCr};
}

Pixels ToPacked(Pixels bgra, int32_t width, int32_t height) {
  Pixels result(size_t{2} * width * height);
  pxcImage destination = Packed(result, width, height);
  EXPECT_TRUE(pxcRGBA2YCbYCr().Execute(Bgra(bgra, width, height), destination));
  return result;
}

Pixels ToBgra(Pixels packed, int32_t width, int32_t height) {
  Pixels result(size_t{4} * width * height);
  pxcImage destination = Bgra(result, width, height);
  EXPECT_TRUE(pxcYCbYCr2RGBA().Execute(Packed(packed, width, height), destination));
  return result;
}

int LargestDifference(const Pixels& a, const Pixels& b) {
  EXPECT_EQ(a.size(), b.size());
  int largest = 0;
  for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

TEST(Conversion, AgreesWithTheReferenceResults) {
  for (const auto& vector : test::Vectors()["conversions"]) {
    const int32_t width = vector["width"], height = vector["height"];
    const Pixels rgb = test::Bytes(vector["rgb"]);
    Pixels bgra;
    for (size_t i = 0; i < rgb.size(); i += 3) {
      bgra.insert(bgra.end(), {rgb[i + 2], rgb[i + 1], rgb[i], 255});
    }
    EXPECT_EQ(ToPacked(bgra, width, height), test::Bytes(vector["yuv422"]));
    EXPECT_EQ(ToBgra(test::Bytes(vector["packed"]), width, height), test::Bytes(vector["bgra"]));
  }
}

TEST(Conversion, GreysCarryNoTintEitherWay) {
  for (int level = 0; level < 256; ++level) {
    const auto grey = static_cast<uint8_t>(level);
    const Pixels packed = ToPacked({grey, grey, grey, 0, grey, grey, grey, 0}, 2, 1);
    EXPECT_EQ(packed[1], 128);
    EXPECT_EQ(packed[3], 128);
    const Pixels back = ToBgra(packed, 2, 1);
    EXPECT_EQ(back[0], back[1]);
    EXPECT_EQ(back[1], back[2]);
    EXPECT_NEAR(back[0], level, 1);
  }
}

TEST(Conversion, BlackAndWhiteMeetTheEndsOfStudioRange) {
  EXPECT_EQ(ToPacked({0, 0, 0, 0, 255, 255, 255, 0}, 2, 1), (Pixels{16, 128, 235, 128}));
  EXPECT_EQ(ToBgra({16, 128, 235, 128}, 2, 1), (Pixels{0, 0, 0, 255, 255, 255, 255, 255}));
}

TEST(Conversion, FlatColoursComeBackWithinTwoLevels) {
  for (int i = 0; i < 16 * 16 * 16; ++i) {
    const auto level = [](int step) { return static_cast<uint8_t>(step * 17); };
    const uint8_t b = level(i & 15), g = level(i >> 4 & 15), r = level(i >> 8);
    const Pixels flat = {b, g, r, 255, b, g, r, 255};
    EXPECT_LE(LargestDifference(ToBgra(ToPacked(flat, 2, 1), 2, 1), flat), 2)
        << int{r} << ' ' << int{g} << ' ' << int{b};
  }
}

TEST(Conversion, APairsChromaIsTheMeanOfItsTwoPixels) {
  const Pixels red = {0, 0, 255, 255}, blue = {255, 0, 0, 255};
  Pixels pair = red;
  pair.insert(pair.end(), blue.begin(), blue.end());
  const Pixels mixed = ToPacked(pair, 2, 1);
  // A lone pixel of an odd width keeps its own chroma.
  const double cbRed = ToPacked(red, 1, 1)[1], cbBlue = ToPacked(blue, 1, 1)[1];
  EXPECT_NEAR(mixed[1], (cbRed + cbBlue) / 2, 1.0);
  EXPECT_LT(mixed[0], 90) << "red's own luma";
  EXPECT_LT(mixed[2], 50) << "blue's own luma";
}

TEST(Conversion, ColoursBeyondTheCubeSaturate) {
  EXPECT_EQ(ToBgra({255, 255, 255, 255}, 2, 1), (Pixels{255, 122, 255, 255, 255, 122, 255, 255}));
  EXPECT_EQ(ToBgra({0, 0, 0, 0}, 2, 1), (Pixels{0, 139, 0, 255, 0, 139, 0, 255}));
}

TEST(Conversion, AtAnOddWidthTheLastPixelTakesCrFromThePairBefore) {
  const Pixels odd = ToBgra({100, 90, 100, 200, 100, 90}, 3, 1);
  EXPECT_TRUE(std::equal(odd.begin() + 8, odd.end(), odd.begin()));
  const Pixels lone = ToBgra({100, 128}, 1, 1);
  EXPECT_EQ(lone[0], lone[2]) << "without a pair before it, neutral";
}

TEST(Conversion, PaddedAndBottomUpRowsAreReadAndWrittenInPlace) {
  constexpr int32_t kWidth = 5, kHeight = 4, kPaddedRgb = 32, kPadded422 = 16;
  std::mt19937 random(7);
  Pixels packedRgb(4 * kWidth * kHeight);
  for (auto& byte : packedRgb) byte = static_cast<uint8_t>(random());
  const Pixels expected = ToPacked(packedRgb, kWidth, kHeight);

  Pixels rgb(kPaddedRgb * kHeight), result(kPadded422 * kHeight, 0xEE);
  for (int y = 0; y < kHeight; ++y) {
    std::copy_n(&packedRgb[4 * kWidth * y], 4 * kWidth, &rgb[kPaddedRgb * (kHeight - 1 - y)]);
  }
  pxcImage source = Bgra(rgb, kWidth, kHeight), destination = Packed(result, kWidth, kHeight);
  source.SetPixelArray(&rgb[kPaddedRgb * (kHeight - 1)], -kPaddedRgb);
  destination.SetPixelArray(result.data(), kPadded422);
  ASSERT_TRUE(pxcRGBA2YCbYCr().Execute(source, destination));
  for (int y = 0; y < kHeight; ++y) {
    const auto row = result.begin() + kPadded422 * y;
    EXPECT_TRUE(std::equal(row, row + 2 * kWidth, expected.begin() + 2 * kWidth * y)) << y;
    EXPECT_EQ(std::count(row + 2 * kWidth, row + kPadded422, 0xEE), kPadded422 - 2 * kWidth);
  }
}

TEST(Conversion, OnlyRowsAndColumnsThatBothImagesHaveAreConverted) {
  Pixels packed(2 * 6 * 3, 128), bgra(4 * 4 * 5, 7);
  pxcImage destination = Bgra(bgra, 4, 5);
  ASSERT_TRUE(pxcYCbYCr2RGBA().Execute(Packed(packed, 6, 3), destination));
  EXPECT_EQ(std::count(bgra.begin(), bgra.begin() + 4 * 4 * 3, 7), 0);
  EXPECT_EQ(std::count(bgra.begin() + 4 * 4 * 3, bgra.end(), 7), 4 * 4 * 2);
}

TEST(Conversion, OtherLayoutsAreRefusedAndNothingIsWritten) {
  Pixels a(16, 1), b(16, 2);
  pxcImage bgra = Bgra(b, 2, 2), packed = Packed(b, 2, 2);
  EXPECT_FALSE(pxcRGBA2YCbYCr().Execute(Bgra(a, 2, 2), bgra));
  EXPECT_FALSE(pxcRGBA2YCbYCr().Execute(Packed(a, 2, 2), packed));
  EXPECT_FALSE(pxcYCbYCr2RGBA().Execute(Packed(a, 2, 2), packed));
  EXPECT_FALSE(pxcYCbYCr2RGBA().Execute(Bgra(a, 2, 2), bgra));
  EXPECT_EQ(b, Pixels(16, 2));
}

TEST(Conversion, RowsLongerThanABlockComeOutLikeShortOnes) {
  constexpr int32_t kWidth = 1283;
  std::mt19937 random(11);
  Pixels packed(2 * kWidth);
  for (auto& byte : packed) byte = static_cast<uint8_t>(random());
  const Pixels whole = ToBgra(packed, kWidth, 1);
  for (int32_t x = 0; x + 1 < kWidth; x += 2) {
    const Pixels pair(packed.begin() + 2 * x, packed.begin() + 2 * x + 4);
    const Pixels expected = ToBgra(pair, 2, 1);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), whole.begin() + 4 * x)) << x;
  }
}

}  // namespace
}  // namespace kelto
