// Pictures read with all their bits, by the libraries of this system.
#include "runtime/stills/deep_reader.h"

#include <memory>

#include "tests/runtime/stills/deep_reading.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"
#include "tests/support/peak_memory.h"

namespace kelto::stills {
namespace {

using DeepReading = StillTest;

void AppendWord(Bytes& to, unsigned word) {
  to.push_back(static_cast<uint8_t>(word >> 8));
  to.push_back(static_cast<uint8_t>(word));
}

/// 256x256 pixels of grey, each of its own level.
PngSpec AllLevels() {
  PngSpec spec;
  spec.width = spec.height = 256;
  spec.color_type = PNG_COLOR_TYPE_GRAY;
  spec.bit_depth = 16;
  for (unsigned level = 0; level < 65536; ++level) AppendWord(spec.rows, level);
  return spec;
}

TEST_F(DeepReading, APngOf16BitsKeepsEachOfItsLevels) {
  for (const bool interlaced : {false, true}) {
    PngSpec spec = AllLevels();
    spec.interlaced = interlaced;
    const auto read = ReadDeep<WordPixel>(Write("levels.png", EncodePng(spec)));
    EXPECT_EQ(read.info.bits, 16);
    EXPECT_FALSE(read.info.floats);
    EXPECT_FALSE(read.transparent);
    for (unsigned level = 0; level < 65536; ++level) {
      const uint16_t word = static_cast<uint16_t>(level);
      ASSERT_EQ(read.pixels[level], (WordPixel{word, word, word, 65535})) << interlaced;
    }
  }
}

TEST_F(DeepReading, SamplesOfEightBitsAreWidenedExactly) {
  const auto read =
      ReadDeep<WordPixel>(Write("eight.png", EncodePng(PngOf(GradientPicture(256, 100)))));
  EXPECT_EQ(read.info.bits, 8);
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 256; ++x) {
      const Pixel p = Gradient(x, y);
      const WordPixel wide{static_cast<uint16_t>(p.r * 257), static_cast<uint16_t>(p.g * 257),
                           static_cast<uint16_t>(p.b * 257), 65535};
      ASSERT_EQ(read.at(x, y), wide);
    }
  }
}

TEST_F(DeepReading, AJpegIsTheImportersPictureWidened) {
  const std::string path = Write("eight.jpg", EncodeJpeg(JpegOf(GradientPicture(64, 48))));
  const Loaded narrow = LoadStill(path);
  const auto read = ReadDeep<WordPixel>(path);
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) {
      ASSERT_EQ(read.at(x, y)[0], narrow.picture.at(x, y).r * 257);
      ASSERT_EQ(read.at(x, y)[2], narrow.picture.at(x, y).b * 257);
    }
  }
}

TEST_F(DeepReading, StraightAlphaIsMultipliedIn) {
  PngSpec spec;
  spec.width = 3;
  spec.height = 1;
  spec.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  spec.bit_depth = 16;
  for (const unsigned alpha : {0u, 32768u, 65535u}) {
    for (const unsigned sample : {65535u, 40000u, 1u, alpha}) AppendWord(spec.rows, sample);
  }
  const auto read = ReadDeep<WordPixel>(Write("alpha.png", EncodePng(spec)));
  EXPECT_TRUE(read.info.alpha);
  EXPECT_TRUE(read.transparent);
  EXPECT_EQ(read.at(0, 0), (WordPixel{0, 0, 0, 0}));
  EXPECT_EQ(read.at(1, 0), (WordPixel{32768, 20000, 1, 32768}));
  EXPECT_EQ(read.at(2, 0), (WordPixel{65535, 40000, 1, 65535}));
}

TEST_F(DeepReading, AnAlphaThatIsFullThroughoutIsNotTransparent) {
  PngSpec spec;
  spec.width = spec.height = 8;
  spec.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  spec.rows.assign(size_t{8} * 8 * 4, 255);
  const auto read = ReadDeep<WordPixel>(Write("opaque.png", EncodePng(spec)));
  EXPECT_TRUE(read.info.alpha);
  EXPECT_FALSE(read.transparent);
}

TEST_F(DeepReading, GreyProfilesConvertGreyAndLeaveAlpha) {
  PngSpec spec;
  spec.width = 256;
  spec.height = 1;
  spec.color_type = PNG_COLOR_TYPE_GRAY_ALPHA;
  spec.bit_depth = 16;
  for (unsigned x = 0; x < 256; ++x) {
    AppendWord(spec.rows, x * 257);
    AppendWord(spec.rows, x == 7 ? 0 : 65535);
  }
  const Bytes profile = GreyProfile(1.0);
  spec.chunks = [&](png_structp png, png_infop info) {
    png_set_iCCP(png, info, "grey", 0, profile.data(), static_cast<png_uint_32>(profile.size()));
  };
  const auto read = ReadDeep<WordPixel>(Write("grey.png", EncodePng(spec)));
  for (int x = 0; x < 256; ++x) {
    const double exact = x == 7 ? 0 : LinearToSrgb(x / 255.0) * 65535;
    ASSERT_NEAR(read.at(x, 0)[0], exact, 40) << x;
    ASSERT_EQ(read.at(x, 0)[3], x == 7 ? 0 : 65535) << x;
  }
}

TEST_F(DeepReading, PixelsAreCountedAtTheirTrueSize) {
  // Of a size that a photograph may have, 400 megapixels, which is drawn in eight bits.
  Bytes bytes = PngHeaderOnly(20000, 20000);
  bytes.resize(50000);
  const std::string path = Write("large.png", bytes);
  const Opened opened = OpenStill(path);
  EXPECT_EQ(opened.error, noErr) << opened.text;
  CloseComponent(opened.importer);
  EXPECT_EQ(ReasonOf(path), "20000x20000 pixels take 3051 MiB; the limit is 2047 MiB");
}

TEST_F(DeepReading, FailsInTheImportersWords) {
  Bytes bytes = EncodePng(AllLevels());
  bytes.resize(bytes.size() / 2);
  const std::string path = Write("cut.png", bytes);
  EXPECT_EQ("cut.png: " + ReasonOf(path), LoadStill(path).text);
  EXPECT_EQ("none: " + ReasonOf(Path("none")), OpenStill(Path("none")).text);
  const std::string bomb = Write("bomb.png", PngHeaderOnly(32000, 32000));
  EXPECT_EQ("bomb.png: " + ReasonOf(bomb), OpenStill(bomb).text);
}

TEST_F(DeepReading, TakesNoMoreThanItSaysBefore) {
  TiffSpec tiff = GradientTiff(2000, 1500);
  tiff.bits = 16;
  EncodeTiff(tiff, Path("large.tif"));
  PngSpec png;
  png.width = 2000;
  png.height = 1500;
  png.bit_depth = 16;
  png.interlaced = true;
  png.rows.assign(size_t{2000} * 1500 * 6, 0x40);
  Write("large.png", EncodePng(png));
  png = PngOf(GradientPicture(2000, 1500));
  png.interlaced = true;
  Write("eight.png", EncodePng(png));
  constexpr int64_t kSlackMiB = 4;
  for (const char* name : {"large.tif", "large.png", "eight.png"}) {
    const test::PeakMemory peak;
    DeepReader reader(Path(name));
    const int64_t pixels = int64_t{2000} * 1500 * 8;
    const Bytes::size_type row = 2000 * 8;
    const auto rows = std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(pixels));
    reader.Read(rows.get(), static_cast<ptrdiff_t>(row));
    EXPECT_LE(peak.MiB(),
              ((pixels + static_cast<int64_t>(reader.info().scratch)) >> 20) + kSlackMiB)
        << name;
  }
}

}  // namespace
}  // namespace kelto::stills
