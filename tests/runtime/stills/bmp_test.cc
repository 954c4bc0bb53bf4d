// BMP, byte by byte.
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Bmp : public StillTest {};

void Put(Bytes& bytes, uint64_t value, int count) {
  for (int i = 0; i < count; ++i, value >>= 8) bytes.push_back(static_cast<uint8_t>(value));
}

/// File header and a 40-byte information header; `extra` bytes lie before the pixels.
Bytes BmpHeader(int width, int height, uint32_t bits, uint32_t compression, uint32_t extra) {
  Bytes bytes = {'B', 'M'};
  Put(bytes, 0, 8);
  Put(bytes, 54 + extra, 4);
  Put(bytes, 40, 4);
  Put(bytes, static_cast<uint32_t>(width), 4);
  Put(bytes, static_cast<uint32_t>(height), 4);
  Put(bytes, 1, 2);
  Put(bytes, bits, 2);
  Put(bytes, compression, 4);
  Put(bytes, 0, 20);
  return bytes;
}

/// The gradient in 24 bits; rows run upwards unless `downwards`.
Bytes GradientBmp(int width, int height, bool downwards) {
  Bytes bytes = BmpHeader(width, downwards ? -height : height, 24, 0, 0);
  for (int row = 0; row < height; ++row) {
    const int y = downwards ? row : height - 1 - row;
    for (int x = 0; x < width; ++x) {
      const Pixel p = Gradient(x, y);
      Append(bytes, {p.b, p.g, p.r});
    }
    while ((bytes.size() - 54) % 4 != 0) bytes.push_back(0);
  }
  return bytes;
}

TEST_F(Bmp, RowsRunUpwardsOrDownwards) {
  for (const bool downwards : {false, true}) {
    for (const int width : {1, 2, 3, 4, 45}) {
      const Loaded loaded = Load(GradientBmp(width, 7, downwards));
      ASSERT_EQ(loaded.error, noErr) << loaded.text;
      EXPECT_EQ(LargestDifference(loaded.picture, GradientPicture(width, 7)), 0) << width;
    }
  }
}

TEST_F(Bmp, Palettes) {
  Bytes bytes = BmpHeader(2, 1, 8, 0, 256 * 4);
  for (uint32_t i = 0; i < 256; ++i) Put(bytes, i << 16 | (255 - i) << 8 | 9, 4);
  Append(bytes, {3, 200, 0, 0});
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(0, 0), Rgb(3, 252, 9));
  EXPECT_EQ(loaded.picture.at(1, 0), Rgb(200, 55, 9));
}

TEST_F(Bmp, AnUnusedFourthByteIsNotAlpha) {
  Bytes bytes = BmpHeader(2, 1, 32, 0, 0);
  Append(bytes, {50, 100, 200, 0, 51, 101, 201, 0});
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(0, 0), Rgb(200, 100, 50));
  EXPECT_EQ(loaded.picture.at(1, 0), Rgb(201, 101, 51));
}

TEST_F(Bmp, TruncatedAnywhereIsAnError) {
  const Bytes whole = GradientBmp(45, 31, false);
  // The padding of the last row is not missed.
  const size_t needed = whole.size() - (4 - 45 * 3 % 4) % 4;
  for (size_t left = 20; left < needed; left += left < 70 ? 1 : 97) {
    const Loaded loaded =
        Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "cut.bmp");
    EXPECT_EQ(loaded.error, codecBadDataErr) << left;
  }
  const Loaded last =
      Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(needed - 1)), "cut.bmp");
  EXPECT_EQ(last.error, codecBadDataErr);
  EXPECT_EQ(last.text, "cut.bmp: truncated BMP (the file ends too early)");
}

TEST_F(Bmp, RunLengthsAreSaidToBeUnsupported) {
  Bytes bytes = BmpHeader(2, 2, 8, 1, 256 * 4);
  bytes.resize(bytes.size() + 1100);
  const Loaded loaded = Load(bytes, "old.bmp");
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text, "old.bmp: unsupported BMP (run-length compression)");
}

TEST_F(Bmp, ATextThatBeginsWithItsTwoLettersIsNoBmp) {
  const std::string text = "BMW is a maker of cars, and this is a text file about them.";
  EXPECT_EQ(Load(Bytes(text.begin(), text.end())).error, noCodecErr);
}

}  // namespace
}  // namespace kelto::stills
