// TIFF read with all its bits, by the library that both systems have.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <set>

#include "tests/runtime/stills/deep_reading.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/profiles.h"

namespace kelto::stills {
namespace {

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

class DeepTiffs : public StillTest {
 protected:
  template <typename Pixel>
  DeepRead<Pixel> ReadTiff(const TiffSpec& spec) const {
    EncodeTiff(spec, Path("deep.tif"));
    return ReadDeep<Pixel>(Path("deep.tif"));
  }
};

TEST_F(DeepTiffs, OrientationTurnsPixelsOfAnyDepth) {
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

TEST_F(DeepTiffs, FloatingPointSamplesKeepWhatLiesBeyondFullScale) {
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

TEST_F(DeepTiffs, TheImporterShowsFloatingPointSamplesBetweenBlackAndWhite) {
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

TEST_F(DeepTiffs, ColoursThatAreMultipliedByAlphaAreKeptSo) {
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

TEST_F(DeepTiffs, ProfilesConvertAllBits) {
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

TEST_F(DeepTiffs, ProfilesConvertFloatsBeyondFullScale) {
  TiffSpec spec = FloatTiff(64, 1, 3, [](int x, int, int) { return static_cast<float>(x) / 16; });
  AddProfile(spec, LinearProfile());
  const auto read = ReadTiff<FloatPixel>(spec);
  for (int x = 0; x < 64; ++x) {
    EXPECT_NEAR(read.at(x, 0)[1], LinearToSrgb(x / 16.0), 0.0005 * std::max(1, x / 16)) << x;
  }
}

TEST_F(DeepTiffs, InkOf16BitsIsKept) {
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

}  // namespace
}  // namespace kelto::stills
