// Pictures read with all their bits.
#include "runtime/stills/deep_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"
#include "tests/support/peak_memory.h"

namespace kelto::stills {
namespace {

using WordPixel = std::array<uint16_t, 4>;
using FloatPixel = std::array<float, 4>;

template <typename Pixel>
struct DeepRead {
  DeepInfo info;
  bool transparent = false;
  std::vector<Pixel> pixels;
  const Pixel& at(int x, int y) const { return pixels[size_t{1} * y * info.width + x]; }
};

template <typename Pixel>
DeepRead<Pixel> ReadDeep(const std::string& path) {
  DeepReader reader(path);
  DeepRead<Pixel> read{reader.info(), false, {}};
  EXPECT_EQ(read.info.PixelBytes(), sizeof(Pixel));
  constexpr size_t kPadding = 16;  // bytes behind each row, to be left alone
  constexpr uint8_t kGuard = 0xa5;
  const size_t row = read.info.width * sizeof(Pixel), step = (row + 15) / 16 * 16 + kPadding;
  Bytes rows(step * read.info.height, kGuard);
  read.transparent = reader.Read(rows.data(), static_cast<ptrdiff_t>(step));
  read.pixels.resize(size_t{read.info.width} * read.info.height);
  for (size_t y = 0; y < read.info.height; ++y) {
    std::memcpy(&read.pixels[y * read.info.width], &rows[y * step], row);
    EXPECT_EQ(rows[y * step + row], kGuard) << "a byte beside row " << y << " was written";
  }
  return read;
}

std::string ReasonOf(const std::string& path) {
  try {
    DeepReader reader(path);
    std::vector<FloatPixel> pixels(size_t{reader.info().width} * reader.info().height);
    reader.Read(pixels.data(), static_cast<ptrdiff_t>(reader.info().width * sizeof(FloatPixel)));
  } catch (const StillError& error) {
    return error.reason;
  }
  return "";
}

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

TiffSpec FloatTiff(int width, int height, int samples, float (*value)(int x, int y, int s)) {
  TiffSpec spec;
  spec.width = width;
  spec.height = height;
  spec.bits = 32;
  spec.samples = samples;
  if (samples < 3) spec.photometric = PHOTOMETRIC_MINISBLACK;
  spec.sample = [=](int x, int y, int s) { return std::bit_cast<unsigned>(value(x, y, s)); };
  spec.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP); };
  return spec;
}

void AddTags(TiffSpec& spec, const std::function<void(TIFF*)>& more) {
  spec.tags = [before = spec.tags, more](TIFF* tiff) {
    if (before) before(tiff);
    more(tiff);
  };
}

void AddProfile(TiffSpec& spec, const Bytes& profile) {
  AddTags(spec, [=](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile.size()), profile.data());
  });
}

class DeepReading : public StillTest {
 protected:
  template <typename Pixel>
  DeepRead<Pixel> ReadTiff(const TiffSpec& spec) const {
    EncodeTiff(spec, Path("deep.tif"));
    return ReadDeep<Pixel>(Path("deep.tif"));
  }
};

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

TEST_F(DeepReading, OrientationTurnsPixelsOfAnyDepth) {
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    TiffSpec words = GradientTiff(40, 24);
    words.bits = 16;
    words.sample = [](int x, int y, int s) { return static_cast<unsigned>(x * 1000 + y * 10 + s); };
    TiffSpec floats =
        FloatTiff(40, 24, 3, [](int x, int y, int s) { return x * 1000.f + y * 10.f + s; });
    const auto mark = [&](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation); };
    AddTags(words, mark);
    AddTags(floats, mark);
    const auto deep = ReadTiff<WordPixel>(words);
    const auto floating = ReadTiff<FloatPixel>(floats);
    ASSERT_EQ(deep.info.width, orientation < 5 ? 40u : 24u);
    // The stored pixel (1, 2), whose place counts from the corner that the mark names.
    const bool right = orientation == 2 || orientation == 3,
               low = orientation == 3 || orientation == 4;
    int x = right ? 38 : 1, y = low ? 21 : 2;
    if (orientation >= 5) {
      x = orientation == 6 || orientation == 7 ? 21 : 2;
      y = orientation == 7 || orientation == 8 ? 38 : 1;
    }
    EXPECT_EQ(deep.at(x, y), (WordPixel{1020, 1021, 1022, 65535})) << orientation;
    EXPECT_EQ(floating.at(x, y), (FloatPixel{1020, 1021, 1022, 1})) << orientation;
  }
}

TEST_F(DeepReading, FloatingPointSamplesKeepWhatLiesBeyondFullScale) {
  const auto read = ReadTiff<FloatPixel>(FloatTiff(6, 1, 1, [](int x, int, int) {
    constexpr float kValues[] = {-0.5f,
                                 0.25f,
                                 4.0f,
                                 std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN(),
                                 1e-20f};
    return kValues[x];
  }));
  EXPECT_TRUE(read.info.floats);
  EXPECT_EQ(read.info.bits, 32);
  const float expected[] = {-0.5f, 0.25f, 4.0f, 65504.0f, 0.0f, 1e-20f};
  for (int x = 0; x < 6; ++x) {
    EXPECT_EQ(read.at(x, 0), (FloatPixel{expected[x], expected[x], expected[x], 1.0f})) << x;
  }
}

TEST_F(DeepReading, TheImporterShowsFloatingPointSamplesBetweenBlackAndWhite) {
  EncodeTiff(FloatTiff(4, 1, 1,
                       [](int x, int, int) {
                         constexpr float kValues[] = {-1.0f, 0.5f, 1.0f, 9.0f};
                         return kValues[x];
                       }),
             Path("float.tif"));
  const Loaded loaded = LoadStill(Path("float.tif"));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  const uint8_t expected[] = {0, 128, 255, 255};
  for (int x = 0; x < 4; ++x) EXPECT_EQ(loaded.picture.at(x, 0).g, expected[x]) << x;
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

TEST_F(DeepReading, ColoursThatAreMultipliedByAlphaAreKeptSo) {
  TiffSpec spec = GradientTiff(2, 1);
  spec.bits = 16;
  spec.samples = 4;
  spec.sample = [](int x, int, int s) -> unsigned {
    return s == 3 ? 30000 : x == 0 ? 20000 : 50000;
  };
  AddTags(spec, [](TIFF* tiff) {
    const uint16_t kind = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  });
  const auto read = ReadTiff<WordPixel>(spec);
  EXPECT_EQ(read.at(0, 0), (WordPixel{20000, 20000, 20000, 30000}));
  // No colour is brighter than its alpha.
  EXPECT_EQ(read.at(1, 0), (WordPixel{30000, 30000, 30000, 30000}));
}

TEST_F(DeepReading, ProfilesConvertAllBits) {
  TiffSpec spec = GradientTiff(256, 64);
  spec.bits = 16;
  spec.sample = [](int x, int y, int) { return static_cast<unsigned>((y * 256 + x) * 4); };
  AddProfile(spec, LinearProfile());
  const auto read = ReadTiff<WordPixel>(spec);
  std::set<uint16_t> levels;
  for (int i = 0; i < 256 * 64; ++i) {
    const double exact = LinearToSrgb(i * 4 / 65535.0) * 65535;
    ASSERT_NEAR(read.pixels[static_cast<size_t>(i)][1], exact, 12) << i;
    levels.insert(read.pixels[static_cast<size_t>(i)][1]);
  }
  EXPECT_GE(levels.size(), 16000u);
}

TEST_F(DeepReading, ProfilesConvertFloatsBeyondFullScale) {
  TiffSpec spec = FloatTiff(64, 1, 3, [](int x, int, int) { return static_cast<float>(x) / 16; });
  AddProfile(spec, LinearProfile());
  const auto read = ReadTiff<FloatPixel>(spec);
  for (int x = 0; x < 64; ++x) {
    EXPECT_NEAR(read.at(x, 0)[1], LinearToSrgb(x / 16.0), 0.0005 * std::max(1, x / 16)) << x;
  }
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

TEST_F(DeepReading, InkOf16BitsIsKept) {
  TiffSpec spec;
  spec.width = 256;
  spec.height = 4;
  spec.bits = 16;
  spec.samples = 4;
  spec.photometric = PHOTOMETRIC_SEPARATED;
  spec.sample = [](int x, int y, int s) -> unsigned {
    return s == 3 ? 0 : unsigned(y * 256 + x) * 8;
  };
  const auto read = ReadTiff<WordPixel>(spec);
  for (int i = 0; i < 1024; ++i) {
    ASSERT_EQ(read.pixels[static_cast<size_t>(i)][0], 65535 - i * 8);
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
