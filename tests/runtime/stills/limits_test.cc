// What a file may ask of the process.
#include "runtime/stills/limits.h"

#include <zlib.h>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Limits : public StillTest {};

TEST_F(Limits, APictureOver32767PixelsASideIsRefusedWhenOpened) {
  PngSpec spec;
  spec.width = 40000;
  spec.height = 1;
  spec.rows.assign(size_t{40000} * 3, 0x40);
  const Opened opened = OpenStill(Write("wide.png", EncodePng(spec)));
  EXPECT_EQ(opened.error, codecBadDataErr);
  EXPECT_EQ(opened.text, "wide.png: 40000x1 pixels; the limit is 32767 pixels a side");
  std::swap(spec.width, spec.height);
  EXPECT_EQ(OpenStill(Write("tall.png", EncodePng(spec))).text,
            "tall.png: 1x40000 pixels; the limit is 32767 pixels a side");
}

TEST_F(Limits, APictureOf32767PixelsASideIsDrawn) {
  PngSpec spec;
  spec.width = 32767;
  spec.height = 2;
  spec.rows.assign(size_t{32767} * 3 * 2, 0x40);
  const Loaded loaded = Load(EncodePng(spec));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.width, 32767);
  EXPECT_EQ(loaded.picture.at(32766, 1), Rgb(0x40, 0x40, 0x40));
}

TEST_F(Limits, EveryFormatsSizeIsLookedAt) {
  TiffSpec tiff = GradientTiff(33000, 1);
  EncodeTiff(tiff, Path("wide.tif"));
  EXPECT_EQ(OpenStill(Path("wide.tif")).text,
            "wide.tif: 33000x1 pixels; the limit is 32767 pixels a side");
  JpegSpec jpeg;
  jpeg.width = 33000;
  jpeg.height = 8;
  jpeg.kind = JpegKind::kGrey;
  jpeg.samples.assign(size_t{33000} * 8, 5);
  EXPECT_EQ(OpenStill(Write("wide.jpg", EncodeJpeg(jpeg))).text,
            "wide.jpg: 33000x8 pixels; the limit is 32767 pixels a side");
  const Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 0xff, 0xff, 1, 0, 0, 0, 0, ';'};
  EXPECT_EQ(OpenStill(Write("wide.gif", gif)).text,
            "wide.gif: 65535x1 pixels; the limit is 32767 pixels a side");
  const Bytes empty = {'G', 'I', 'F', '8', '9', 'a', 0, 0, 1, 0, 0, 0, 0, ';'};
  EXPECT_EQ(OpenStill(Write("none.gif", empty)).text,
            "none.gif: 0x1 pixels: there is nothing to draw");
}

TEST_F(Limits, AFewBytesThatClaimAHugePictureAreRefusedBeforeAnybodyAllocates) {
  const Opened opened = OpenStill(Write("bomb.png", PngHeaderOnly(32000, 32000)));
  EXPECT_EQ(opened.error, codecBadDataErr);
  EXPECT_EQ(opened.text,
            "bomb.png: 32000x32000 pixels in a file of 49 bytes; the limit is 10000 pixels a byte");
  // A size that a blank page may well have is not refused for being packed tightly.
  const Opened page = OpenStill(Write("page.png", PngHeaderOnly(10000, 10000)));
  EXPECT_EQ(page.error, noErr) << page.text;
  CloseComponent(page.importer);
}

TEST_F(Limits, AProgressiveJpegOfTooManyScansIsRefused) {
  JpegSpec spec = JpegOf(GradientPicture(16, 16));
  spec.scans = 100;
  EXPECT_EQ(Load(EncodeJpeg(spec)).error, noErr);
  spec.scans = kMaxJpegScans + 1;
  const Loaded loaded = Load(EncodeJpeg(spec), "slow.jpg");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text,
            "slow.jpg: a JPEG of too many scans; the limit is 500, and fewer for large pictures");
}

TEST_F(Limits, AnOversizedProfileIsRefusedAndNotLoaded) {
  const Bytes huge(kMaxIccBytes + 1, 0);
  TiffSpec spec = GradientTiff(8, 8);
  spec.tags = [&](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(huge.size()), huge.data());
  };
  EncodeTiff(spec, Path("huge.tif"));
  EXPECT_EQ(OpenStill(Path("huge.tif")).text,
            "huge.tif: an ICC profile of 16384 KiB; the limit is 16384 KiB");
}

TEST_F(Limits, APngProfileThatUnpacksToMoreThanTheLimitIsRefused) {
  Bytes profile = SwappedProfile();
  // The length in its header, which is looked at before the rest is unpacked.
  profile[0] = 0x7f;
  const Bytes plain = EncodePng(PngOf(GradientPicture(8, 8)));
  Bytes content = {'p', 0, 0};
  Bytes packed(profile.size() + 1000);
  uLongf packed_size = packed.size();
  ASSERT_EQ(compress(packed.data(), &packed_size, profile.data(), profile.size()), Z_OK);
  packed.resize(packed_size);
  Append(content, packed);
  const Bytes chunk = PngChunk("iCCP", content);
  Bytes bytes = plain;
  bytes.insert(bytes.begin() + kPngAfterHeader, chunk.begin(), chunk.end());
  const Loaded loaded = Load(bytes, "bomb.png");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_NE(loaded.text.find("application limits"), std::string::npos) << loaded.text;
}

TEST_F(Limits, PackedTextsOfAPngAreNotUnpacked) {
  const Bytes plain = EncodePng(PngOf(GradientPicture(8, 8)));
  const Bytes zeros(64u << 20, 0);
  Bytes packed(1 << 20);
  uLongf packed_size = packed.size();
  ASSERT_EQ(compress(packed.data(), &packed_size, zeros.data(), zeros.size()), Z_OK);
  Bytes content = {'k', 0, 0};
  packed.resize(packed_size);
  Append(content, packed);
  const Bytes chunk = PngChunk("zTXt", content);
  Bytes bytes = plain;
  for (int i = 0; i < 20; ++i)
    bytes.insert(bytes.begin() + kPngAfterHeader, chunk.begin(), chunk.end());
  EXPECT_EQ(LargestDifference(Load(bytes).picture, GradientPicture(8, 8)), 0);
}

TEST_F(Limits, TilesOfGigabytesAreRefused) {
  TiffSpec spec = GradientTiff(16, 16);
  spec.tile = 16;
  Bytes bytes = EncodeTiff(spec, Path("whole.tif"));
  int changed = 0;
  // Tile width and length: tags 322 and 323, one 16-bit value each, made 65520.
  for (size_t i = 8; i + 12 <= bytes.size(); ++i) {
    if ((bytes[i] == 0x42 || bytes[i] == 0x43) && bytes[i + 1] == 1 && bytes[i + 3] == 0 &&
        bytes[i + 4] == 1) {
      bytes[i + 8] = 0xf0;
      bytes[i + 9] = 0xff;
      ++changed;
    }
  }
  ASSERT_EQ(changed, 2);
  const Loaded loaded = Load(bytes, "bomb.tif");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_NE(loaded.text.find("the limit is 2048 MiB"), std::string::npos) << loaded.text;
}

}  // namespace
}  // namespace kelto::stills
