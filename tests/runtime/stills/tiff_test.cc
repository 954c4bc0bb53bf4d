// TIFF in the ways in which its samples may be stored; see tiff_forms_test.cc for what they mean.
#include <cmath>

#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Tiff : public StillTest {
 protected:
  Picture Decoded(const TiffSpec& spec) const {
    EncodeTiff(spec, Path("picture.tif"));
    const Loaded loaded = LoadStill(Path("picture.tif"));
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

TEST_F(Tiff, EveryCompressionStripsAndTilesInterleavedAndInPlanes) {
  for (const int compression :
       {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS}) {
    for (const bool separate : {false, true}) {
      for (const int tile : {0, 16, 32}) {
        TiffSpec spec = GradientTiff(53, 37);
        spec.compression = compression;
        spec.separate = separate;
        spec.tile = tile;
        EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(53, 37)), 0)
            << "compression " << compression << (separate ? " separate" : "") << " tile " << tile;
      }
    }
  }
}

TEST_F(Tiff, OneStripForTheWholePicture) {
  TiffSpec spec = GradientTiff(53, 37);
  spec.rows_per_strip = 37;
  spec.separate = true;
  EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(53, 37)), 0);
}

TEST_F(Tiff, EitherByteOrderAndLargeFileOffsets) {
  for (const char* mode : {"wl", "wb", "w8"}) {
    for (const int bits : {8, 16}) {
      TiffSpec spec = GradientTiff(20, 10);
      spec.mode = mode;
      spec.bits = bits;
      const auto eight = spec.sample;
      if (bits == 16) spec.sample = [=](int x, int y, int s) { return eight(x, y, s) * 257; };
      EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(20, 10)), 0) << mode << bits;
    }
  }
}

TEST_F(Tiff, SixteenBitsInTilesAndPlanesAreRoundedToEight) {
  for (const int tile : {0, 16}) {
    TiffSpec spec = GradientTiff(40, 24);
    spec.bits = 16;
    spec.separate = true;
    spec.tile = tile;
    spec.sample = [](int x, int y, int s) {
      const Pixel p = Gradient(x, y);
      return (s == 0 ? p.r : s == 1 ? p.g : p.b) * 257u + (s != 2 ? 100u : 0u);
    };
    EXPECT_EQ(LargestDifference(Decoded(spec), GradientPicture(40, 24)), 0);
  }
}

TEST_F(Tiff, JpegStripsOfLumaAndChroma) {
  TiffSpec spec = GradientTiff(48, 32);
  spec.compression = COMPRESSION_JPEG;
  spec.photometric = PHOTOMETRIC_YCBCR;
  spec.rows_per_strip = 16;
  spec.tags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_JPEGQUALITY, 98);
    TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  };
  EXPECT_LE(LargestDifference(Decoded(spec), GradientPicture(48, 32)), 8);
}

TEST_F(Tiff, LumaAndChromaWithoutCompressionGoThroughTheLibrarysOwnConversion) {
  TiffSpec spec = GradientTiff(12, 11);
  spec.photometric = PHOTOMETRIC_YCBCR;
  spec.tags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    const float reference[] = {0, 255, 128, 255, 128, 255};
    TIFFSetField(tiff, TIFFTAG_REFERENCEBLACKWHITE, reference);
  };
  // ITU-R BT.601, the default coefficients: Y, Cb, Cr of a brightness that grows downwards and red.
  spec.sample = [](int, int y, int s) {
    return s == 0 ? 60u + 10u * static_cast<unsigned>(y) : s == 1 ? 128u : 160u;
  };
  const Picture picture = Decoded(spec);
  for (int y = 0; y < 11; ++y) {
    const double luma = 60 + 10 * y;
    const auto byte = [](double v) { return static_cast<uint8_t>(std::lround(v)); };
    EXPECT_TRUE(IsNear(picture.at(6, y),
                       Rgb(byte(luma + 1.402 * 32), byte(luma - 0.714136 * 32), byte(luma)), 1))
        << y;
  }
}

TEST_F(Tiff, TruncatedIsAnError) {
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
    TiffSpec spec = GradientTiff(64, 64);
    spec.compression = compression;
    const Bytes whole = EncodeTiff(spec, Path("whole.tif"));
    // The directory lies at the end of the file, so a cut file is seen at once.
    const Loaded cut = Load(Bytes(whole.begin(), whole.end() - 40), "scan.tif");
    EXPECT_EQ(cut.error, codecBadDataErr);
    EXPECT_EQ(cut.text.rfind("scan.tif: truncated TIFF (", 0), 0u) << cut.text;
    const Loaded half =
        Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(whole.size() / 2)));
    EXPECT_EQ(half.error, codecBadDataErr);
  }
}

TEST_F(Tiff, StripsThatPointOutsideTheFileAreAnError) {
  TiffSpec spec = GradientTiff(64, 4);
  spec.rows_per_strip = 4;
  spec.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SOFTWARE, "x"); };
  Bytes bytes = EncodeTiff(spec, Path("whole.tif"));
  // Strip offsets: tag 273, one 32-bit value in place.
  for (size_t i = 8; i + 12 <= bytes.size(); ++i) {
    if (bytes[i] == 0x11 && bytes[i + 1] == 0x01 && bytes[i + 4] == 1) bytes[i + 10] = 0x7f;
  }
  const Loaded loaded = Load(bytes, "scan.tif");
  EXPECT_EQ(loaded.error, codecBadDataErr);
}

TEST_F(Tiff, DamageInAJpegStripIsAnErrorThoughTheLibraryOnlyWarns) {
  TiffSpec spec = GradientTiff(64, 64);
  spec.compression = COMPRESSION_JPEG;
  spec.rows_per_strip = 64;
  const Bytes whole = EncodeTiff(spec, Path("whole.tif"));
  Bytes damaged = whole;
  for (size_t i = 400; i < 404; ++i) damaged[i] = i % 2 == 0 ? 0xff : 0xd9;
  ASSERT_NE(damaged, whole);
  EXPECT_EQ(Load(damaged).error, codecBadDataErr);
}

}  // namespace
}  // namespace kelto::stills
