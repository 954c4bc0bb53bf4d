// Pictures read with all their bits through the system's imaging component.
#include <gmock/gmock.h>
#include <windows.h>

#include <wincodec.h>

#include <utility>

#include "tests/runtime/stills/deep_reading.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/windows/gif_file.h"
#include "tests/windows/png_file.h"
#include "tests/windows/wic_file.h"

namespace kelto::stills {
namespace {

using testing::HasSubstr;

class WicDeepStills : public StillTest {
 protected:
  DeepRead<WordPixel> Words(const Bytes& file) const {
    return ReadDeep<WordPixel>(Write("deep.png", file));
  }
};

/// Every level once, in 256x256 pixels whose channels lie apart; an alpha is full.
std::vector<uint16_t> EveryLevel(int channels) {
  std::vector<uint16_t> words;
  for (unsigned level = 0; level < 65536; ++level) {
    for (int c = 0; c < channels; ++c) {
      words.push_back(c == 3 || (c == 1 && channels == 2)
                          ? uint16_t{65535}
                          : static_cast<uint16_t>(level + 1000 * c));
    }
  }
  return words;
}

TEST_F(WicDeepStills, APngOf16BitsKeepsEachOfItsLevels) {
  for (const int channels : {1, 2, 3, 4}) {
    const auto read = Words(EncodePngWords(256, 256, channels, EveryLevel(channels)));
    EXPECT_EQ(read.info.bits, 16);
    EXPECT_FALSE(read.info.floats);
    EXPECT_EQ(read.info.alpha, channels % 2 == 0);
    EXPECT_FALSE(read.transparent);
    const int apart = channels < 3 ? 0 : 1000;
    for (int level = 0; level < 65536; ++level) {
      const WordPixel expected{static_cast<uint16_t>(level), static_cast<uint16_t>(level + apart),
                               static_cast<uint16_t>(level + 2 * apart), 65535};
      ASSERT_EQ(read.pixels[static_cast<size_t>(level)], expected) << channels << " channels";
    }
  }
}

TEST_F(WicDeepStills, StraightAlphaIsMultipliedIn) {
  const auto read = Words(EncodePngWords(
      3, 1, 4, {65535, 40000, 1, 0, 65535, 40000, 1, 32768, 65535, 40000, 1, 65535}));
  EXPECT_TRUE(read.info.alpha);
  EXPECT_TRUE(read.transparent);
  EXPECT_EQ(read.at(0, 0), (WordPixel{0, 0, 0, 0}));
  EXPECT_EQ(read.at(1, 0), (WordPixel{32768, 20000, 1, 32768}));
  EXPECT_EQ(read.at(2, 0), (WordPixel{65535, 40000, 1, 65535}));
}

TEST_F(WicDeepStills, EveryOrientationIsTurnedUpright) {
  constexpr int kWidth = 40, kHeight = 24;
  std::vector<uint16_t> words;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      for (int c = 0; c < 3; ++c) words.push_back(static_cast<uint16_t>(x * 1000 + y * 10 + c));
    }
  }
  const Bytes png = EncodePngWords(kWidth, kHeight, 3, words);
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    const auto read = Words(WithPngChunk(png, "eXIf", ExifBlock(orientation, true, true)));
    ASSERT_EQ(read.info.width, orientation < 5 ? 40u : 24u);
    // The stored pixel (1, 2), whose place counts from the corner that the mark names.
    const bool right = orientation == 2 || orientation == 3,
               low = orientation == 3 || orientation == 4;
    int x = right ? 38 : 1, y = low ? 21 : 2;
    if (orientation >= 5) {
      x = orientation == 6 || orientation == 7 ? 21 : 2;
      y = orientation == 7 || orientation == 8 ? 38 : 1;
    }
    EXPECT_EQ(read.at(x, y), (WordPixel{1020, 1021, 1022, 65535})) << orientation;
  }
}

// By Little CMS, whatever the version of the component does with profiles.
TEST_F(WicDeepStills, ProfilesConvertAllBits) {
  for (const int channels : {1, 2, 3, 4}) {
    const bool alpha = channels % 2 == 0;
    std::vector<uint16_t> words;
    for (unsigned level = 0; level < 65536; level += 16) {
      for (int c = 0; c < channels; ++c) {
        words.push_back(alpha && c == channels - 1 ? 65535 : static_cast<uint16_t>(level));
      }
    }
    const auto read = Words(WithPngProfile(EncodePngWords(64, 64, channels, words),
                                           channels < 3 ? GreyProfile(1.0) : LinearProfile()));
    for (int i = 0; i < 64 * 64; ++i) {
      const double exact = LinearToSrgb(i * 16 / 65535.0) * 65535;
      ASSERT_NEAR(read.pixels[static_cast<size_t>(i)][1], exact, 40) << channels << " " << i;
    }
  }
}

TEST_F(WicDeepStills, SamplesOfEightBitsAreTheImportersWidened) {
  for (const GUID& container :
       {GUID_ContainerFormatPng, GUID_ContainerFormatJpeg, GUID_ContainerFormatBmp}) {
    const std::string path = Write("eight", EncodeByWic(container, GradientPicture(64, 48)));
    const Loaded narrow = LoadStill(path);
    const auto read = ReadDeep<WordPixel>(path);
    EXPECT_EQ(read.info.bits, 8);
    EXPECT_FALSE(read.transparent);
    for (int y = 0; y < 48; ++y) {
      for (int x = 0; x < 64; ++x) {
        const Pixel p = narrow.picture.at(x, y);
        const WordPixel wide{static_cast<uint16_t>(p.r * 257), static_cast<uint16_t>(p.g * 257),
                             static_cast<uint16_t>(p.b * 257), 65535};
        ASSERT_EQ(read.at(x, y), wide);
      }
    }
  }
}

TEST_F(WicDeepStills, AGifsTransparentColourAndWhatItsFrameLeavesLetEverythingThrough) {
  const auto part = ReadDeep<WordPixel>(Write("part.gif", EncodeGif(20, 12, {5, 3, 4, 6, 1})));
  EXPECT_TRUE(part.transparent);
  EXPECT_EQ(part.at(0, 0), (WordPixel{0, 0, 0, 0}));
  EXPECT_EQ(part.at(5, 3), (WordPixel{65535, 0, 0, 65535}));
  const auto clear = ReadDeep<WordPixel>(Write("clear.gif", EncodeGif(8, 8, {0, 0, 8, 8, 3}, 3)));
  EXPECT_EQ(clear.at(4, 4), (WordPixel{0, 0, 0, 0}));
}

TEST_F(WicDeepStills, FailInTheImportersWords) {
  Bytes cut = EncodePngWords(256, 256, 3, EveryLevel(3));
  cut.resize(cut.size() / 2);
  const std::pair<const char*, Bytes> files[] = {{"cut.png", cut},
                                                 {"bomb.png", DeepPngHeader(32000, 32000)},
                                                 {"wide.png", DeepPngHeader(40000, 1)},
                                                 {"none.png", DeepPngHeader(0, 9)}};
  for (const auto& [name, bytes] : files) {
    const std::string path = Write(name, bytes);
    EXPECT_EQ(name + (": " + ReasonOf(path)), LoadStill(path).text);
  }
  EXPECT_THAT(ReasonOf(Path("cut.png")), HasSubstr("(the system's decoder reports 0x"));
  EXPECT_EQ(ReasonOf(Path("wide.png")), "40000x1 pixels; the limit is 32767 pixels a side");
}

}  // namespace
}  // namespace kelto::stills
