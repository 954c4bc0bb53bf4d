// TGA, byte by byte.
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Tga : public StillTest {};

Bytes TgaHeader(int type, int width, int height, int bits, int descriptor) {
  Bytes bytes = {0, 0, static_cast<uint8_t>(type), 0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (const int side : {width, height}) {
    Append(bytes, {static_cast<uint8_t>(side), static_cast<uint8_t>(side >> 8)});
  }
  Append(bytes, {static_cast<uint8_t>(bits), static_cast<uint8_t>(descriptor)});
  return bytes;
}

constexpr int kTopFirst = 0x20, kRightFirst = 0x10;

Bytes GradientTga(int width, int height, int descriptor) {
  Bytes bytes = TgaHeader(2, width, height, 24, descriptor);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const Pixel p = Gradient(descriptor & kRightFirst ? width - 1 - column : column,
                               descriptor & kTopFirst ? row : height - 1 - row);
      Append(bytes, {p.b, p.g, p.r});
    }
  }
  return bytes;
}

TEST_F(Tga, PixelsMayStartInAnyCorner) {
  for (const int descriptor : {0, kTopFirst, kRightFirst, kTopFirst | kRightFirst}) {
    const Loaded loaded = Load(GradientTga(45, 7, descriptor));
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_EQ(LargestDifference(loaded.picture, GradientPicture(45, 7)), 0) << descriptor;
  }
}

TEST_F(Tga, RunLengths) {
  Bytes bytes = TgaHeader(10, 8, 2, 24, kTopFirst);
  for (int row = 0; row < 2; ++row) {
    Append(bytes, {0x80 | 5, 1, 2, 3});          // six pixels alike
    Append(bytes, {1, 10, 20, 30, 40, 50, 60});  // two of their own
  }
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(5, 1), Rgb(3, 2, 1));
  EXPECT_EQ(loaded.picture.at(6, 1), Rgb(30, 20, 10));
  EXPECT_EQ(loaded.picture.at(7, 0), Rgb(60, 50, 40));
}

TEST_F(Tga, GreyPictures) {
  Bytes bytes = TgaHeader(3, 3, 1, 8, kTopFirst);
  Append(bytes, {0, 99, 255});
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(1, 0), Rgb(99, 99, 99));
}

TEST_F(Tga, AlphaIsDrawnOverBlackUnlessItIsZeroThroughout) {
  Bytes bytes = TgaHeader(2, 2, 1, 32, kTopFirst | 8);
  Append(bytes, {50, 100, 200, 51, 50, 100, 200, 0});
  EXPECT_EQ(Load(bytes).picture.at(0, 0), Rgb(40, 20, 10));
  EXPECT_EQ(Load(bytes).picture.at(1, 0), Rgb(0, 0, 0));
  bytes[18 + 3] = 0;
  EXPECT_EQ(Load(bytes).picture.at(0, 0), Rgb(200, 100, 50));
}

TEST_F(Tga, TruncatedAnywhereIsAnError) {
  // Runs of bytes longer than the library's buffer, and as long as it.
  for (const int width : {45, 128, 300}) {
    const Bytes whole = GradientTga(width, 5, kTopFirst);
    const size_t row = static_cast<size_t>(width) * 3;
    for (size_t left = 18; left < whole.size(); left += left + row < whole.size() ? 61 : 1) {
      const Loaded loaded =
          Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "cut.tga");
      ASSERT_EQ(loaded.error, codecBadDataErr) << left;
      ASSERT_EQ(loaded.text, "cut.tga: truncated TGA (the file ends too early)");
    }
  }
}

}  // namespace
}  // namespace kelto::stills
