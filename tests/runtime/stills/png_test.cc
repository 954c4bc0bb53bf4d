#include "tests/runtime/stills/encode_png.h"

#include <functional>

#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Png : public StillTest {
 protected:
  Picture Decoded(const PngSpec& spec) const {
    const Loaded loaded = Load(EncodePng(spec), "picture.png");
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

/// Packs `value(x, y, channel)` samples of any depth.
PngSpec Packed(int width, int height, int color_type, int bit_depth, int channels,
               const std::function<unsigned(int, int, int)>& value) {
  PngSpec spec;
  spec.width = width;
  spec.height = height;
  spec.color_type = color_type;
  spec.bit_depth = bit_depth;
  for (int y = 0; y < height; ++y) {
    unsigned pending = 0;
    int bits = 0;
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < channels; ++c) {
        pending = pending << bit_depth | value(x, y, c);
        bits += bit_depth;
        for (; bits >= 8; bits -= 8) {
          spec.rows.push_back(static_cast<uint8_t>(pending >> (bits - 8)));
        }
      }
    }
    if (bits > 0) spec.rows.push_back(static_cast<uint8_t>(pending << (8 - bits)));
  }
  return spec;
}

TEST_F(Png, ColourComesOutExactly) {
  EXPECT_EQ(LargestDifference(Decoded(PngOf(GradientPicture(61, 43))), GradientPicture(61, 43)), 0);
}

TEST_F(Png, InterlacedFilesGiveTheSamePicture) {
  for (const int side : {1, 2, 7, 33}) {
    PngSpec spec = PngOf(GradientPicture(side, side + 3));
    spec.interlaced = true;
    EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(side, side + 3)), 0) << side;
  }
}

TEST_F(Png, GreyOfEveryDepthReachesBlackAndWhite) {
  for (const int depth : {1, 2, 4, 8, 16}) {
    const unsigned full = (1u << depth) - 1;
    const Picture picture =
        Decoded(Packed(9, 2, PNG_COLOR_TYPE_GRAY, depth, 1,
                       [&](int x, int, int) { return static_cast<unsigned>(x) * full / 8; }));
    for (int x = 0; x < 9; ++x) {
      const unsigned stored = static_cast<unsigned>(x) * full / 8;
      const uint8_t v = static_cast<uint8_t>((stored * 255 + full / 2) / full);
      EXPECT_TRUE(IsNear(picture.at(x, 1), Rgb(v, v, v), 0)) << depth << " bits, " << x;
    }
  }
}

TEST_F(Png, SixteenBitsAreRoundedToEight) {
  const auto value = [](int x, int, int c) {
    return 257u * static_cast<unsigned>(x) + 128u * (c == 1);
  };
  const Picture picture = Decoded(Packed(256, 1, PNG_COLOR_TYPE_RGB, 16, 3, value));
  for (int x = 0; x < 255; ++x) {
    const uint8_t v = static_cast<uint8_t>(x);
    EXPECT_TRUE(IsNear(picture.at(x, 0), Rgb(v, v, v), 0)) << x;
  }
}

TEST_F(Png, AlphaIsDrawnOverBlack) {
  for (const int depth : {8, 16}) {
    const unsigned scale = depth == 16 ? 257 : 1;
    const auto value = [&](int x, int, int c) {
      return scale * (c == 3 ? static_cast<unsigned>(x) * 51 : c == 0 ? 200u : c == 1 ? 100u : 50u);
    };
    const Picture picture = Decoded(Packed(6, 1, PNG_COLOR_TYPE_RGB_ALPHA, depth, 4, value));
    for (int x = 0; x < 6; ++x) {
      const uint8_t r = static_cast<uint8_t>(200 * x / 5), g = static_cast<uint8_t>(100 * x / 5),
                    b = static_cast<uint8_t>(50 * x / 5);
      EXPECT_TRUE(IsNear(picture.at(x, 0), Rgb(r, g, b), 0)) << x;
    }
  }
}

TEST_F(Png, GreyWithAlphaIsDrawnOverBlack) {
  const Picture picture = Decoded(Packed(2, 1, PNG_COLOR_TYPE_GRAY_ALPHA, 8, 2,
                                         [](int x, int, int c) { return c ? 255u * x : 90u; }));
  EXPECT_EQ(picture.at(0, 0), Rgb(0, 0, 0));
  EXPECT_EQ(picture.at(1, 0), Rgb(90, 90, 90));
}

TEST_F(Png, PalettesOfEveryDepthWithAndWithoutTransparentEntries) {
  for (const int depth : {1, 2, 4, 8}) {
    for (const bool transparent : {false, true}) {
      for (const bool interlaced : {false, true}) {
        const int count = 1 << depth;
        PngSpec spec = Packed(19, 5, PNG_COLOR_TYPE_PALETTE, depth, 1, [&](int x, int y, int) {
          return static_cast<unsigned>((x + y) % count);
        });
        spec.interlaced = interlaced;
        spec.chunks = [&](png_structp png, png_infop info) {
          std::vector<png_color> palette;
          palette.reserve(256);
          for (int i = 0; i < count; ++i) {
            palette.push_back({static_cast<png_byte>(i), static_cast<png_byte>(255 - i), 77});
          }
          png_set_PLTE(png, info, palette.data(), count);
          png_byte alpha[] = {0};  // of entry 0
          if (transparent) png_set_tRNS(png, info, alpha, 1, nullptr);
        };
        const Picture picture = Decoded(spec);
        for (int y = 0; y < 5; ++y) {
          for (int x = 0; x < 19; ++x) {
            const int i = (x + y) % count;
            const Pixel expected = transparent && i == 0 ? Rgb(0, 0, 0)
                                                         : Rgb(static_cast<uint8_t>(i),
                                                               static_cast<uint8_t>(255 - i), 77);
            ASSERT_EQ(picture.at(x, y), expected) << depth << " bits at " << x << "," << y;
          }
        }
      }
    }
  }
}

TEST_F(Png, ATransparentColourBecomesBlack) {
  for (const int type : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB}) {
    PngSpec spec = Packed(2, 1, type, 8, type == PNG_COLOR_TYPE_RGB ? 3 : 1,
                          [](int x, int, int) { return x == 0 ? 120u : 121u; });
    spec.chunks = [](png_structp png, png_infop info) {
      png_color_16 color = {0, 120, 120, 120, 120};
      png_set_tRNS(png, info, nullptr, 0, &color);
    };
    const Picture picture = Decoded(spec);
    EXPECT_EQ(picture.at(0, 0), Rgb(0, 0, 0));
    EXPECT_EQ(picture.at(1, 0), Rgb(121, 121, 121));
  }
}

TEST_F(Png, GammaAloneIsIgnoredSinceManyProgramsDidNotMeanIt) {
  PngSpec spec = PngOf(GradientPicture(20, 20));
  spec.chunks = [](png_structp png, png_infop info) { png_set_gAMA(png, info, 1.0); };
  EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(20, 20)), 0);
}

TEST_F(Png, GammaWithPrimariesIsHonouredUnlessThePictureSaysSrgb) {
  PngSpec spec = PngOf({1, 1, {Rgb(55, 55, 55)}});
  spec.chunks = [](png_structp png, png_infop info) {
    png_set_gAMA(png, info, 1.0);
    png_set_cHRM(png, info, 0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06);
  };
  // 55 / 255 of the light is 128 on the sRGB curve.
  EXPECT_TRUE(IsNear(Decoded(spec).at(0, 0), Rgb(128, 128, 128), 1));

  Bytes bytes = EncodePng(spec);
  const Bytes srgb = PngChunk("sRGB", {PNG_sRGB_INTENT_PERCEPTUAL});
  bytes.insert(bytes.begin() + kPngAfterHeader, srgb.begin(), srgb.end());
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(0, 0), Rgb(55, 55, 55));
}

TEST_F(Png, TheUsualSrgbGammaAndPrimariesLeaveEveryLevelAsItIs) {
  PngSpec spec = PngOf(GradientPicture(200, 3));
  spec.chunks = [](png_structp png, png_infop info) {
    png_set_gAMA(png, info, 0.45455);
    png_set_cHRM(png, info, 0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06);
  };
  EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(200, 3)), 0);
}

TEST_F(Png, TruncatedAnywhereIsAnError) {
  for (const bool interlaced : {false, true}) {
    PngSpec spec = PngOf(GradientPicture(40, 40));
    spec.interlaced = interlaced;
    const Bytes whole = EncodePng(spec);
    for (size_t left = 8; left < whole.size(); left += 7) {
      const Loaded loaded =
          Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "shot.png");
      EXPECT_EQ(loaded.error, codecBadDataErr) << left;
      EXPECT_EQ(loaded.text, "shot.png: truncated PNG (the file ends too early)");
    }
  }
}

TEST_F(Png, AWrongChecksumIsAnError) {
  Bytes bytes = EncodePng(PngOf(GradientPicture(40, 40)));
  bytes[bytes.size() - 30] ^= 1;
  const Loaded loaded = Load(bytes, "shot.png");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text.rfind("shot.png: damaged PNG (", 0), 0u) << loaded.text;
}

}  // namespace
}  // namespace kelto::stills
