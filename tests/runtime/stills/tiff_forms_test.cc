// TIFF in what its samples may mean.
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class TiffForms : public StillTest {
 protected:
  Loaded LoadSpec(const TiffSpec& spec) const {
    EncodeTiff(spec, Path("picture.tif"));
    return LoadStill(Path("picture.tif"));
  }
  Picture Decoded(const TiffSpec& spec) const {
    const Loaded loaded = LoadSpec(spec);
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

TiffSpec Grey(int bits, int photometric) {
  TiffSpec spec;
  spec.width = 17;
  spec.height = 3;
  spec.bits = bits;
  spec.samples = 1;
  spec.photometric = photometric;
  const unsigned full = (1u << bits) - 1;
  spec.sample = [full](int x, int, int) { return static_cast<unsigned>(x) * full / 16; };
  return spec;
}

TEST_F(TiffForms, GreyOfEveryDepthCountedFromBlackOrFromWhite) {
  for (const int bits : {1, 2, 4, 8, 16}) {
    for (const int photometric : {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE}) {
      for (const int tile : {0, 16}) {
        TiffSpec spec = Grey(bits, photometric);
        spec.tile = tile;
        const Picture picture = Decoded(spec);
        const unsigned full = (1u << bits) - 1;
        for (int x = 0; x < 17; ++x) {
          const unsigned stored = static_cast<unsigned>(x) * full / 16;
          const unsigned level = photometric == PHOTOMETRIC_MINISWHITE ? full - stored : stored;
          const uint8_t v = static_cast<uint8_t>((level * 255 + full / 2) / full);
          EXPECT_EQ(picture.at(x, 2), Rgb(v, v, v)) << bits << " bits, column " << x;
        }
      }
    }
  }
}

TEST_F(TiffForms, FaxCompressedPages) {
  TiffSpec spec = Grey(1, PHOTOMETRIC_MINISWHITE);
  spec.compression = COMPRESSION_CCITTFAX4;
  spec.sample = [](int x, int y, int) { return static_cast<unsigned>((x + y) % 3 == 0); };
  const Picture picture = Decoded(spec);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 17; ++x) {
      const uint8_t v = (x + y) % 3 == 0 ? 0 : 255;
      EXPECT_EQ(picture.at(x, y), Rgb(v, v, v));
    }
  }
}

TEST_F(TiffForms, PalettesOfSixteenBitsAndThoseMistakenlyOfEight) {
  for (const int bits : {1, 4, 8}) {
    for (const uint16_t scale : {uint16_t{257}, uint16_t{1}}) {
      TiffSpec spec = Grey(bits, PHOTOMETRIC_PALETTE);
      const int count = 1 << bits;
      spec.sample = [count](int x, int y, int) { return static_cast<unsigned>((x + y) % count); };
      std::vector<uint16_t> red, green, blue;
      for (int i = 0; i < count; ++i) {
        red.push_back(static_cast<uint16_t>(i * scale));
        green.push_back(static_cast<uint16_t>((255 - i) * scale));
        blue.push_back(static_cast<uint16_t>(77 * scale));
      }
      spec.tags = [&](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
      };
      const Picture picture = Decoded(spec);
      for (int x = 0; x < 17; ++x) {
        const int i = (x + 1) % count;
        EXPECT_EQ(picture.at(x, 1), Rgb(static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 77))
            << bits << " bits, column " << x;
      }
    }
  }
}

/// One flat pixel value of four samples.
TiffSpec FourSamples(int photometric, int bits, const std::vector<unsigned>& values) {
  TiffSpec spec;
  spec.width = spec.height = 20;
  spec.samples = static_cast<int>(values.size());
  spec.bits = bits;
  spec.photometric = photometric;
  const unsigned scale = bits == 16 ? 257 : 1;
  spec.sample = [=](int, int, int s) { return values[static_cast<size_t>(s)] * scale; };
  return spec;
}

void SetExtra(TIFF* tiff, uint16_t kind) { TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind); }

TEST_F(TiffForms, InkWithoutAProfile) {
  for (const int bits : {8, 16}) {
    for (const bool separate : {false, true}) {
      for (const int tile : {0, 16}) {
        TiffSpec spec = FourSamples(PHOTOMETRIC_SEPARATED, bits, {55, 155, 205, 127});
        spec.separate = separate;
        spec.tile = tile;
        EXPECT_TRUE(IsNear(Decoded(spec).at(10, 19), Rgb(100, 50, 25), 1));
      }
    }
  }
}

TEST_F(TiffForms, InkWithAlphaIsDrawnOverBlack) {
  TiffSpec spec = FourSamples(PHOTOMETRIC_SEPARATED, 8, {55, 155, 205, 0, 128});
  spec.tags = [](TIFF* tiff) { SetExtra(tiff, EXTRASAMPLE_UNASSALPHA); };
  EXPECT_TRUE(IsNear(Decoded(spec).at(3, 3), Rgb(100, 50, 25), 1));
}

TEST_F(TiffForms, AlphaApartIsMultipliedInAndAlphaMultipliedAlreadyIsNotAgain) {
  for (const int bits : {8, 16}) {
    for (const bool separate : {false, true}) {
      TiffSpec spec = FourSamples(PHOTOMETRIC_RGB, bits, {200, 100, 50, 51});
      spec.separate = separate;
      spec.tags = [](TIFF* tiff) { SetExtra(tiff, EXTRASAMPLE_UNASSALPHA); };
      EXPECT_EQ(Decoded(spec).at(7, 7), Rgb(40, 20, 10));
      spec = FourSamples(PHOTOMETRIC_RGB, bits, {40, 20, 10, 51});
      spec.separate = separate;
      spec.tags = [](TIFF* tiff) { SetExtra(tiff, EXTRASAMPLE_ASSOCALPHA); };
      EXPECT_EQ(Decoded(spec).at(7, 7), Rgb(40, 20, 10));
    }
  }
}

TEST_F(TiffForms, AFourthSampleOfNoStatedMeaningIsNotAlpha) {
  TiffSpec spec = FourSamples(PHOTOMETRIC_RGB, 8, {200, 100, 50, 0});
  spec.tags = [](TIFF* tiff) { SetExtra(tiff, EXTRASAMPLE_UNSPECIFIED); };
  EXPECT_EQ(Decoded(spec).at(7, 7), Rgb(200, 100, 50));
}

TEST_F(TiffForms, GreyWithAlpha) {
  TiffSpec spec = FourSamples(PHOTOMETRIC_MINISBLACK, 8, {200, 51});
  spec.tags = [](TIFF* tiff) { SetExtra(tiff, EXTRASAMPLE_UNASSALPHA); };
  EXPECT_EQ(Decoded(spec).at(7, 7), Rgb(40, 40, 40));
}

TEST_F(TiffForms, LabGoesThroughTheLibrarysOwnConversion) {
  // L* = 50 of 100 without colour: a luminance of 0.184, which is 119 in sRGB.
  const Picture picture = Decoded(FourSamples(PHOTOMETRIC_CIELAB, 8, {128, 0, 0}));
  const Pixel p = picture.at(10, 10);
  EXPECT_NEAR(p.g, 119, 12);
  EXPECT_NEAR(p.r, p.g, 14);
}

TEST_F(TiffForms, OrientationTurnsThePictureInBothPaths) {
  const Picture upright = GradientPicture(37, 21);
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    const Picture stored = StoredFor(upright, orientation);
    TiffSpec spec = GradientTiff(stored.width, stored.height);
    spec.sample = [&](int x, int y, int s) -> unsigned {
      const Pixel p = stored.at(x, y);
      return s == 0 ? p.r : s == 1 ? p.g : p.b;
    };
    spec.tags = [=](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation); };
    EXPECT_EQ(LargestDifference(Decoded(spec), upright), 0) << orientation;

    // Luma alone, as luma and chroma.
    spec.photometric = PHOTOMETRIC_YCBCR;
    spec.tags = [=](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
      TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    };
    spec.sample = [&](int x, int y, int s) -> unsigned { return s == 0 ? stored.at(x, y).r : 128; };
    Picture grey = upright;
    for (Pixel& p : grey.pixels) p.g = p.b = p.r;
    EXPECT_LE(LargestDifference(Decoded(spec), grey), 1) << orientation;
  }
}

TEST_F(TiffForms, HalfFloatsAreSaidToBeUnsupported) {
  TiffSpec spec = FourSamples(PHOTOMETRIC_RGB, 16, {1, 2, 3});
  spec.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP); };
  const Loaded loaded = LoadSpec(spec);
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text,
            "picture.tif: unsupported TIFF (floating-point samples that are not grey or RGB of 32 "
            "bits)");
}

TEST_F(TiffForms, SignedSamplesAreSaidToBeUnsupported) {
  TiffSpec spec = FourSamples(PHOTOMETRIC_RGB, 16, {1, 2, 3});
  spec.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT); };
  const Loaded loaded = LoadSpec(spec);
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text, "picture.tif: unsupported TIFF (samples are not unsigned integers)");
}

TEST_F(TiffForms, OddDepthsAreSaidToBeUnsupported) {
  TiffSpec spec = GradientTiff(8, 8);
  spec.bits = 4;
  spec.sample = [](int, int, int) { return 7u; };
  const Loaded loaded = LoadSpec(spec);
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text.rfind("picture.tif: unsupported TIFF (4 bits a sample", 0), 0u)
      << loaded.text;
}

}  // namespace
}  // namespace kelto::stills
