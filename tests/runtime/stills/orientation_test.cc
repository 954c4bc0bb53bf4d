// EXIF orientation: pictures come out upright.
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Orientation : public StillTest {
 protected:
  Picture DecodedPng(PngSpec spec, const Bytes& exif, const Bytes& icc = {}) const {
    spec.chunks = [&](png_structp png, png_infop info) {
      png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()),
                     const_cast<png_bytep>(exif.data()));
      if (icc.empty()) return;
      png_set_iCCP(png, info, "p", PNG_COMPRESSION_TYPE_BASE, icc.data(),
                   static_cast<png_uint_32>(icc.size()));
    };
    const Loaded loaded = Load(EncodePng(spec), "picture.png");
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

TEST_F(Orientation, AllEightTurnPngUpright) {
  // More rows than a strip of turned ones, a single row and a single column.
  for (const auto& [width, height] : {std::pair{37, 53}, {16, 32}, {1, 40}, {40, 1}, {1, 1}}) {
    const Picture upright = GradientPicture(width, height);
    for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
      for (const bool interlaced : {false, true}) {
        PngSpec spec = PngOf(StoredFor(upright, orientation));
        spec.interlaced = interlaced;
        EXPECT_EQ(LargestDifference(DecodedPng(spec, ExifBlock(orientation, true, true)), upright),
                  0)
            << "orientation " << orientation << ", " << width << "x" << height;
      }
    }
  }
}

/// The picture turned clockwise by a quarter.
Picture Turned(const Picture& picture) {
  Picture turned = {picture.height, picture.width, {}};
  for (int y = 0; y < turned.height; ++y) {
    for (int x = 0; x < turned.width; ++x) {
      turned.pixels.push_back(picture.at(y, picture.height - 1 - x));
    }
  }
  return turned;
}

TEST_F(Orientation, IsWhereTurnedNamesTurnOn) {
  const Picture upright = GradientPicture(37, 53);
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    PngSpec spec = PngOf(StoredFor(upright, orientation));
    DecodedPng(spec, ExifBlock(orientation, true, true));
    Picture turned = upright;
    for (const char* degrees : {"90", "180", "270"}) {
      turned = Turned(turned);
      const Loaded loaded = LoadStill(Path("picture.png") + "?turned=" + degrees);
      ASSERT_EQ(loaded.error, noErr) << loaded.text;
      EXPECT_EQ(LargestDifference(loaded.picture, turned), 0) << orientation << ", " << degrees;
    }
  }
}

TEST_F(Orientation, OfAFileThatIsReallyCalledSoIsItsOwn) {
  const Picture upright = GradientPicture(20, 30);
  const Loaded loaded = Load(EncodePng(PngOf(upright)), "picture.png?turned=90");
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(LargestDifference(loaded.picture, upright), 0);
  EXPECT_NE(LoadStill(Path("picture.png") + "?turned=45").error, noErr) << "is a name like others";
}

TEST_F(Orientation, AllEightTurnJpegUpright) {
  // Flat blocks, which JPEG keeps.
  Picture upright = {48, 32, {}};
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 48; ++x) {
      upright.pixels.push_back(Gradient(x / 8 * 40, y / 8 * 60));
    }
  }
  for (const bool big_endian : {false, true}) {
    for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
      JpegSpec spec = JpegOf(StoredFor(upright, orientation));
      spec.quality = 100;
      spec.exif = ExifBlock(orientation, big_endian);
      const Loaded loaded = Load(EncodeJpeg(spec));
      ASSERT_EQ(loaded.error, noErr) << loaded.text;
      EXPECT_LE(LargestDifference(loaded.picture, upright), 3) << orientation;
    }
  }
}

TEST_F(Orientation, InkAndProfilesAreTurnedToo) {
  JpegSpec spec;
  spec.width = 16;
  spec.height = 40;
  spec.kind = JpegKind::kCmyk;
  spec.quality = 100;
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 16; ++x) {
      const uint8_t v = y < 8 ? 200 : 100;
      Append(spec.samples, {v, v, v, 255});
    }
  }
  spec.exif = ExifBlock(6);  // stored top is the right side
  const Loaded loaded = Load(EncodeJpeg(spec));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  ASSERT_EQ(loaded.picture.width, 40);
  EXPECT_TRUE(IsNear(loaded.picture.at(39, 8), Rgb(200, 200, 200), 1));
  EXPECT_TRUE(IsNear(loaded.picture.at(0, 8), Rgb(100, 100, 100), 1));

  const Picture upright = {2, 1, {Rgb(255, 0, 0), Rgb(0, 0, 255)}};
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    const Picture picture = DecodedPng(PngOf(StoredFor(upright, orientation)),
                                       ExifBlock(orientation, false, true), SwappedProfile());
    EXPECT_TRUE(IsNear(picture.at(0, 0), Rgb(0, 255, 0), 1)) << orientation;
  }
}

TEST_F(Orientation, ZeroAndValuesOutOfRangeMeanUpright) {
  const Picture picture = GradientPicture(20, 10);
  for (const uint16_t orientation : {0, 9, 255, 65535}) {
    EXPECT_EQ(
        LargestDifference(DecodedPng(PngOf(picture), ExifBlock(orientation, false, true)), picture),
        0)
        << orientation;
  }
}

TEST_F(Orientation, NaturalBoundsAreThoseAfterTurning) {
  JpegSpec spec = JpegOf(GradientPicture(40, 24));
  spec.exif = ExifBlock(8);
  const Opened opened = OpenStill(Write("turned.jpg", EncodeJpeg(spec)));
  ASSERT_EQ(opened.error, noErr) << opened.text;
  StillRect bounds;
  ASSERT_EQ(GraphicsImportGetNaturalBounds(opened.importer, &bounds), noErr);
  EXPECT_EQ(bounds.right, 24);
  EXPECT_EQ(bounds.bottom, 40);
  CloseComponent(opened.importer);
}

TEST_F(Orientation, DamagedBlocksMeanUpright) {
  const Picture picture = GradientPicture(20, 10);
  const Bytes whole = ExifBlock(6, false, true);
  for (const size_t left : {size_t{4}, size_t{8}, size_t{10}, size_t{13}}) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left));
    EXPECT_EQ(LargestDifference(DecodedPng(PngOf(picture), cut), picture), 0) << left;
  }
  Bytes text = whole;
  text[12] = 2;  // the value's type: characters
  EXPECT_EQ(LargestDifference(DecodedPng(PngOf(picture), text), picture), 0);
}

}  // namespace
}  // namespace kelto::stills
