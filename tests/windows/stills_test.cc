// The still importer over the system's imaging component.
#include <gmock/gmock.h>
#include <windows.h>

#include <wincodec.h>

#include <filesystem>

#include "tests/windows/gif_file.h"
#include "tests/windows/png_file.h"
#include "tests/windows/wic_file.h"

namespace kelto::stills {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using WicStills = StillTest;

void AppendBigEndian(Bytes& to, uint32_t value, int bytes) {
  for (int i = bytes - 1; i >= 0; --i) to.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

/// A TIFF structure with an orientation, as EXIF has it: 26 bytes.
Bytes OrientationBlock(int orientation) {
  Bytes block = {'M', 'M', 0, 42};
  AppendBigEndian(block, 8, 4);
  AppendBigEndian(block, 1, 2);
  AppendBigEndian(block, 274, 2);  // the tag
  AppendBigEndian(block, 3, 2);    // a 16-bit number
  AppendBigEndian(block, 1, 4);    // one of them
  AppendBigEndian(block, static_cast<uint32_t>(orientation), 2);
  AppendBigEndian(block, 0, 2);
  AppendBigEndian(block, 0, 4);
  return block;
}

Bytes Joined(const Bytes& a, const Bytes& b) {
  Bytes all = a;
  Append(all, b);
  return all;
}

/// Puts `inserted` behind the first `at` bytes.
Bytes Inserted(Bytes file, size_t at, const Bytes& inserted) {
  file.insert(file.begin() + static_cast<ptrdiff_t>(at), inserted.begin(), inserted.end());
  return file;
}

Bytes JpegWithOrientation(const Picture& picture, int orientation) {
  Bytes segment = {0xff, 0xe1};
  const Bytes block = Joined({'E', 'x', 'i', 'f', 0, 0}, OrientationBlock(orientation));
  AppendBigEndian(segment, static_cast<uint32_t>(block.size() + 2), 2);
  return Inserted(EncodeByWic(GUID_ContainerFormatJpeg, picture), 2, Joined(segment, block));
}

Bytes PngWithOrientation(const Picture& picture, int orientation) {
  return WithPngChunk(EncodeByWic(GUID_ContainerFormatPng, picture), "eXIf",
                      OrientationBlock(orientation));
}

/// Uncompressed, big-endian, in one strip.
Bytes TiffWithOrientation(const Picture& picture, int orientation) {
  const auto width = static_cast<uint32_t>(picture.width);
  const auto height = static_cast<uint32_t>(picture.height);
  constexpr uint32_t kEntries = 9, kPixels = 8 + 2 + 12 * kEntries + 4 + 6;
  Bytes file = {'M', 'M', 0, 42, 0, 0, 0, 8};
  AppendBigEndian(file, kEntries, 2);
  const auto entry = [&](uint32_t tag, uint32_t value, bool is_short) {
    AppendBigEndian(file, tag, 2);
    AppendBigEndian(file, is_short ? 3 : 4, 2);
    AppendBigEndian(file, 1, 4);
    AppendBigEndian(file, is_short ? value << 16 : value, 4);
  };
  entry(256, width, false);
  entry(257, height, false);
  AppendBigEndian(file, 258, 2);  // bits: three numbers in front of the pixels
  AppendBigEndian(file, 3, 2);
  AppendBigEndian(file, 3, 4);
  AppendBigEndian(file, kPixels - 6, 4);
  entry(262, 2, true);  // RGB
  entry(273, kPixels, false);
  entry(274, static_cast<uint32_t>(orientation), true);
  entry(277, 3, true);
  entry(278, height, false);
  entry(279, width * height * 3, false);
  AppendBigEndian(file, 0, 4);
  for (int i = 0; i < 3; ++i) AppendBigEndian(file, 8, 2);
  for (const Pixel& p : picture.pixels) Append(file, {p.r, p.g, p.b});
  return file;
}

/// How a picture stored as `stored` is to be seen (EXIF 2.32, table 6).
Picture Turned(const Picture& stored, int orientation) {
  const bool on_side = orientation >= 5;
  Picture seen = {
      on_side ? stored.height : stored.width, on_side ? stored.width : stored.height, {}};
  for (int y = 0; y < seen.height; ++y) {
    for (int x = 0; x < seen.width; ++x) {
      const int mx = seen.width - 1 - x, my = seen.height - 1 - y;
      switch (orientation) {
        case 2:
          seen.pixels.push_back(stored.at(mx, y));
          break;
        case 3:
          seen.pixels.push_back(stored.at(mx, my));
          break;
        case 4:
          seen.pixels.push_back(stored.at(x, my));
          break;
        case 5:
          seen.pixels.push_back(stored.at(y, x));
          break;
        case 6:
          seen.pixels.push_back(stored.at(y, mx));
          break;
        case 7:
          seen.pixels.push_back(stored.at(my, mx));
          break;
        case 8:
          seen.pixels.push_back(stored.at(my, x));
          break;
        default:
          seen.pixels.push_back(stored.at(x, y));
          break;
      }
    }
  }
  return seen;
}

TEST_F(WicStills, LosslessFormatsComeBackExactlyAndNothingBesideThePictureIsWritten) {
  const Picture picture = GradientPicture(37, 50);
  for (const GUID& container :
       {GUID_ContainerFormatPng, GUID_ContainerFormatTiff, GUID_ContainerFormatBmp}) {
    const Loaded loaded = Load(EncodeByWic(container, picture));
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_EQ(LargestDifference(loaded.picture, picture), 0);
  }
}

TEST_F(WicStills, AJpegComesBackCloseToWhatWasWritten) {
  const Picture picture = GradientPicture(64, 48);
  const Loaded loaded = Load(EncodeByWic(GUID_ContainerFormatJpeg, picture));
  EXPECT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_LE(LargestDifference(loaded.picture, picture), 8);
}

TEST_F(WicStills, EveryOrientationOfEveryFormatIsTurnedUpright) {
  const Picture picture = GradientPicture(40, 24);
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const Picture upright = Turned(picture, orientation);
    EXPECT_EQ(LargestDifference(Load(PngWithOrientation(picture, orientation)).picture, upright),
              0);
    EXPECT_EQ(LargestDifference(Load(TiffWithOrientation(picture, orientation)).picture, upright),
              0);
    EXPECT_LE(LargestDifference(Load(JpegWithOrientation(picture, orientation)).picture, upright),
              8);
  }
}

TEST_F(WicStills, AnOrientationOfZeroOrNineMeansUpright) {
  const Picture picture = GradientPicture(40, 24);
  for (const int orientation : {0, 9, 65535}) {
    EXPECT_EQ(LargestDifference(Load(PngWithOrientation(picture, orientation)).picture, picture),
              0);
  }
}

TEST_F(WicStills, ADamagedOrientationBlockIsPassedOver) {
  const Picture picture = GradientPicture(40, 24);
  Bytes file = JpegWithOrientation(picture, 6);
  // The directory's offset, in the block behind marker, length, name and the block's own mark.
  file[2 + 4 + 6 + 4] = 0xff;
  EXPECT_LE(LargestDifference(Load(file).picture, picture), 8);
}

TEST_F(WicStills, TransparencyIsDrawnOverBlack) {
  Picture picture = {3, 1, {{200, 100, 50, 255}, {200, 100, 50, 128}, {200, 100, 50, 0}}};
  const Loaded loaded = Load(EncodeByWic(GUID_ContainerFormatPng, picture, true));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(0, 0), Rgb(50, 100, 200));
  EXPECT_EQ(loaded.picture.at(1, 0), Rgb(25, 50, 100));
  EXPECT_EQ(loaded.picture.at(2, 0), Rgb(0, 0, 0));
}

TEST_F(WicStills, AGifIsItsWholeScreenWithItsFirstFrameInPlace) {
  const Loaded loaded = Load(EncodeGif(20, 12, {5, 3, 4, 6, 1}));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  ASSERT_EQ(loaded.picture.width, 20);
  ASSERT_EQ(loaded.picture.height, 12);
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 20; ++x) {
      const bool in_frame = x >= 5 && x < 9 && y >= 3 && y < 9;
      ASSERT_EQ(loaded.picture.at(x, y), in_frame ? Rgb(255, 0, 0) : Rgb(0, 0, 0)) << x << " " << y;
    }
  }
}

TEST_F(WicStills, APartOfAGifFrameThatReachesOutsideTheScreenIsDropped) {
  const Loaded loaded = Load(EncodeGif(8, 8, {6, 6, 5, 5, 2}));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(7, 7), Rgb(0, 255, 0));
  EXPECT_EQ(loaded.picture.at(5, 7), Rgb(0, 0, 0));
}

TEST_F(WicStills, AGifsTransparentColourIsBlack) {
  const Loaded loaded = Load(EncodeGif(8, 8, {0, 0, 8, 8, 3}, 3));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(loaded.picture.at(4, 4), Rgb(0, 0, 0));
}

TEST_F(WicStills, WhatIsNotThereOrNoFileIsTold) {
  EXPECT_EQ(LoadStill(Path("none.jpg")).error, fnfErr);
  EXPECT_EQ(LoadStill(Path("none.jpg")).text, "none.jpg: no such file");
  std::filesystem::create_directory(Path("photos"));
  EXPECT_EQ(LoadStill(Path("photos")).error, fnfErr);
  EXPECT_EQ(LoadStill(Path("photos")).text, "photos: a folder, not a picture");
}

TEST_F(WicStills, WhatIsNoPictureIsTold) {
  EXPECT_EQ(Load({}, "empty.jpg").text, "empty.jpg: an empty file");
  const Loaded text = Load(Bytes(500, 'x'), "text.jpg");
  EXPECT_EQ(text.error, noCodecErr);
  EXPECT_EQ(text.text, "text.jpg: not a picture in a known format");
}

TEST_F(WicStills, FormatsThatOnlySomeVersionsOfTheComponentKnowAreRefused) {
  // An icon of one white pixel, as a bitmap of 32 bits and its mask.
  Bytes icon = {0, 0, 1, 0, 1, 0, 1, 1, 0, 0, 1, 0, 32, 0, 48, 0, 0, 0, 22, 0, 0, 0};
  Append(icon, {40, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 1, 0, 32, 0});
  Append(icon, Bytes(24, 0));
  Append(icon, {255, 255, 255, 255, 0, 0, 0, 0});
  const Loaded loaded = Load(icon, "picture.ico");
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text, "picture.ico: not a picture in a known format");
}

/// Half of a picture's file.
Bytes Half(const GUID& container) {
  Bytes file = EncodeByWic(container, GradientPicture(200, 200));
  file.resize(file.size() / 2);
  return file;
}

TEST_F(WicStills, ATruncatedJpegFailsAndSaysSo) {
  const Loaded loaded = Load(Half(GUID_ContainerFormatJpeg), "half.jpg");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_THAT(loaded.text,
              StartsWith("half.jpg: truncated picture (the system's decoder reports 0x"));
}

// Decoders that read in blocks of the file's own size cannot be told from ones that met damage.
TEST_F(WicStills, ATruncatedPngFails) {
  const Loaded loaded = Load(Half(GUID_ContainerFormatPng), "half.png");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_THAT(loaded.text, HasSubstr(" picture (the system's decoder reports 0x"));
}

TEST_F(WicStills, PicturesBeyondTheLimitsAreRefusedWithTheirSize) {
  const Loaded loaded =
      Load(EncodeByWic(GUID_ContainerFormatPng, GradientPicture(40000, 1)), "wide.png");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text, "wide.png: 40000x1 pixels; the limit is 32767 pixels a side");
}

// Some versions of the component unpack a PNG when it is opened.
TEST_F(WicStills, AFewBytesThatClaimAHugePngAreRefusedBeforeTheComponentSeesThem) {
  const Bytes header = DeepPngHeader(32000, 32000);
  const Loaded loaded = Load(header, "bomb.png");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text, "bomb.png: 32000x32000 pixels in a file of " +
                             std::to_string(header.size()) +
                             " bytes; the limit is 10000 pixels a byte");
}

TEST_F(WicStills, AThreadThatUsesComItsOwnWayIsServedToo) {
  const Bytes file = EncodeByWic(GUID_ContainerFormatPng, GradientPicture(20, 20));
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(Load(file).error, noErr);
  CoUninitialize();
  EXPECT_EQ(Load(file).error, noErr);
}

}  // namespace
}  // namespace kelto::stills
