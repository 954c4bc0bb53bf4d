// Embedded profiles.
#include <array>
#include <cmath>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Color : public StillTest {
 protected:
  Picture DecodedPng(PngSpec spec, const Bytes& icc) const {
    spec.chunks = [&](png_structp png, png_infop info) {
      png_set_iCCP(png, info, "p", PNG_COMPRESSION_TYPE_BASE, icc.data(),
                   static_cast<png_uint_32>(icc.size()));
    };
    const Loaded loaded = Load(EncodePng(spec), "picture.png");
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
  Picture DecodedTiff(TiffSpec spec, const Bytes& icc) const {
    const auto tags = spec.tags;
    spec.tags = [&](TIFF* tiff) {
      if (tags) tags(tiff);
      TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(icc.size()), icc.data());
    };
    EncodeTiff(spec, Path("picture.tif"));
    const Loaded loaded = LoadStill(Path("picture.tif"));
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

using Matrix = std::array<std::array<double, 3>, 3>;

/// Linear light of wide primaries to linear light of sRGB's (both D65), as in CSS Color 4.
constexpr Matrix kDisplayP3ToSrgb = {
    {{1.2249401762805598, -0.22494017628055996, 0},
     {-0.042056954709688163, 1.0420569547096881, 0},
     {-0.019637554590334432, -0.078636045550631889, 1.0982736001409663}}};
constexpr Matrix kAdobe1998ToSrgb = {
    {{1.3983557, -0.3983557, 0}, {0, 1, 0}, {0, -0.0429333, 1.0429333}}};

uint8_t ToByte(double linear) {
  const double v = LinearToSrgb(std::clamp(linear, 0.0, 1.0));
  return static_cast<uint8_t>(std::lround(v * 255));
}

template <typename Curve>
Pixel Converted(const Pixel& p, const Matrix& matrix, const Curve& curve) {
  const double linear[] = {curve(p.r / 255.0), curve(p.g / 255.0), curve(p.b / 255.0)};
  uint8_t out[3];
  for (size_t i = 0; i < 3; ++i) {
    out[i] = ToByte(matrix[i][0] * linear[0] + matrix[i][1] * linear[1] + matrix[i][2] * linear[2]);
  }
  return Rgb(out[0], out[1], out[2]);
}

TEST_F(Color, AProfileWithItsPrimariesSwappedSwapsColours) {
  const Picture picture =
      DecodedPng(PngOf({3, 1, {Rgb(255, 0, 0), Rgb(0, 255, 0), Rgb(0, 0, 255)}}), SwappedProfile());
  EXPECT_TRUE(IsNear(picture.at(0, 0), Rgb(0, 255, 0), 1));
  EXPECT_TRUE(IsNear(picture.at(1, 0), Rgb(255, 0, 0), 1));
  EXPECT_TRUE(IsNear(picture.at(2, 0), Rgb(0, 0, 255), 1));
}

TEST_F(Color, WidePrimariesComeOutAsTheirMatrixSays) {
  Picture colors = {0, 1, {}};
  for (int r = 60; r <= 220; r += 40) {
    for (int g = 60; g <= 220; g += 40) {
      for (int b = 60; b <= 220; b += 40) {
        colors.pixels.push_back(
            Rgb(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)));
      }
    }
  }
  colors.width = static_cast<int>(colors.pixels.size());
  const Picture p3 = DecodedPng(PngOf(colors), DisplayP3Profile());
  const Picture wide = DecodedPng(PngOf(colors), WideGammaProfile());
  for (int x = 0; x < colors.width; ++x) {
    const Pixel p = colors.at(x, 0);
    EXPECT_TRUE(IsNear(p3.at(x, 0), Converted(p, kDisplayP3ToSrgb, SrgbToLinear), 2)) << p;
    EXPECT_TRUE(IsNear(
        wide.at(x, 0),
        Converted(p, kAdobe1998ToSrgb, [](double v) { return std::pow(v, 563.0 / 256); }), 2))
        << p;
  }
}

TEST_F(Color, AProfileThatIsSrgbLeavesEveryLevelAsItIs) {
  EXPECT_EQ(LargestDifference(DecodedPng(PngOf(GradientPicture(200, 150)), SrgbProfile()),
                              GradientPicture(200, 150)),
            0);
}

TEST_F(Color, JpegProfilesAreHonouredInSequentialAndProgressiveFiles) {
  JpegSpec spec = JpegOf({16, 16, std::vector<Pixel>(256, Rgb(255, 0, 0))});
  spec.icc = SwappedProfile();
  for (const bool progressive : {false, true}) {
    spec.progressive = progressive;
    const Loaded loaded = Load(EncodeJpeg(spec));
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_TRUE(IsNear(loaded.picture.at(8, 8), Rgb(0, 255, 0), 3));
  }
}

TEST_F(Color, GreyProfilesApplyToGreyPicturesOfEightAndSixteenBits) {
  // Gamma 1: samples proportional to light.
  const Bytes icc = GreyProfile(1);
  for (const int bits : {8, 16}) {
    TiffSpec spec;
    spec.width = 256;
    spec.height = 1;
    spec.bits = bits;
    spec.samples = 1;
    spec.photometric = PHOTOMETRIC_MINISBLACK;
    spec.sample = [&](int x, int, int) {
      return static_cast<unsigned>(x) * (bits == 16 ? 257 : 1);
    };
    const Picture picture = DecodedTiff(spec, icc);
    for (int x = 0; x < 256; ++x) {
      const uint8_t v = ToByte(x / 255.0);
      EXPECT_TRUE(IsNear(picture.at(x, 0), Rgb(v, v, v), 1)) << bits << " bits, level " << x;
    }
  }
  JpegSpec spec;
  spec.width = spec.height = 8;
  spec.kind = JpegKind::kGrey;
  spec.samples.assign(64, 55);
  spec.icc = icc;
  EXPECT_TRUE(IsNear(Load(EncodeJpeg(spec)).picture.at(3, 3), Rgb(128, 128, 128), 2));
}

TEST_F(Color, GreyPicturesMayHaveAColourProfile) {
  JpegSpec spec;
  spec.width = spec.height = 8;
  spec.kind = JpegKind::kGrey;
  spec.samples.assign(64, 55);
  spec.icc = LinearProfile();
  EXPECT_TRUE(IsNear(Load(EncodeJpeg(spec)).picture.at(3, 3), Rgb(128, 128, 128), 2));
}

TEST_F(Color, SixteenBitsKeepTheShadowsOfALinearProfile) {
  // Eight bits first would leave two levels of these 64.
  PngSpec spec;
  spec.width = 64;
  spec.height = 1;
  spec.bit_depth = 16;
  for (int x = 0; x < 64; ++x) {
    for (int c = 0; c < 3; ++c) {
      const int word = x * 8;
      spec.rows.push_back(static_cast<uint8_t>(word >> 8));
      spec.rows.push_back(static_cast<uint8_t>(word & 255));
    }
  }
  for (const bool interlaced : {false, true}) {
    spec.interlaced = interlaced;
    const Picture picture = DecodedPng(spec, LinearProfile());
    for (int x = 0; x < 64; ++x) {
      const uint8_t v = ToByte(x * 8 / 65535.0);
      EXPECT_TRUE(IsNear(picture.at(x, 0), Rgb(v, v, v), 1)) << x;
    }
  }
}

TEST_F(Color, InkProfilesApplyToJpegAndTiff) {
  // Half the black: L* = 50, which is 119 in sRGB. The plain formula would give 128.
  JpegSpec jpeg;
  jpeg.width = jpeg.height = 8;
  jpeg.kind = JpegKind::kCmyk;
  jpeg.quality = 100;
  for (int i = 0; i < 64; ++i) Append(jpeg.samples, {0, 255, 255, 127});
  jpeg.icc = InkProfile();
  const Loaded loaded = Load(EncodeJpeg(jpeg));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(4, 4), Rgb(119, 119, 119), 2));

  TiffSpec tiff;
  tiff.width = tiff.height = 8;
  tiff.samples = 4;
  tiff.photometric = PHOTOMETRIC_SEPARATED;
  tiff.sample = [](int, int, int s) { return s == 0 ? 255u : s == 3 ? 128u : 0u; };
  EXPECT_TRUE(IsNear(DecodedTiff(tiff, InkProfile()).at(4, 4), Rgb(119, 119, 119), 2));
}

TEST_F(Color, DamagedProfilesAndThoseForAnotherColourModelAreIgnored) {
  JpegSpec spec = JpegOf({8, 8, std::vector<Pixel>(64, Rgb(200, 60, 30))});
  const Loaded plain = Load(EncodeJpeg(spec));
  Bytes cut = SwappedProfile();
  cut.resize(cut.size() / 2);
  for (const Bytes& icc : {cut, Bytes(300, 7), GreyProfile(1), InkProfile()}) {
    spec.icc = icc;
    const Loaded loaded = Load(EncodeJpeg(spec));
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_EQ(LargestDifference(loaded.picture, plain.picture), 0);
  }
}

TEST_F(Color, AlphaIsDrawnOverBlackAfterTheProfile) {
  PngSpec spec;
  spec.width = spec.height = 1;
  spec.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  spec.rows = {255, 0, 0, 51};
  EXPECT_TRUE(IsNear(DecodedPng(spec, SwappedProfile()).at(0, 0), Rgb(0, 51, 0), 1));
}

TEST_F(Color, ColoursMultipliedByAlphaAreMadeWholeForTheProfile) {
  // 128 of 255 at half alpha is full red; a linear profile would turn 128 itself into 188.
  for (const int bits : {8, 16}) {
    TiffSpec spec;
    spec.width = spec.height = 4;
    spec.samples = 4;
    spec.bits = bits;
    spec.sample = [&](int, int, int s) {
      return (s == 0 || s == 3 ? 128u : 0u) * (bits == 16 ? 257 : 1);
    };
    spec.tags = [](TIFF* tiff) {
      const uint16_t kind = EXTRASAMPLE_ASSOCALPHA;
      TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    };
    EXPECT_TRUE(IsNear(DecodedTiff(spec, LinearProfile()).at(1, 1), Rgb(128, 0, 0), 1));
  }
}

}  // namespace
}  // namespace kelto::stills
