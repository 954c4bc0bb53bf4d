#include "platform/still_reduction.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Jpeg : public StillTest {};

TEST_F(Jpeg, ColoursComeOutAsLibjpegDecodesThem) {
  for (const bool full_chroma : {true, false}) {
    JpegSpec spec = JpegOf(GradientPicture(61, 43));
    spec.full_chroma = full_chroma;
    const Bytes bytes = EncodeJpeg(spec);
    const Loaded loaded = Load(bytes);
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_EQ(LargestDifference(loaded.picture, PlainDecode(bytes)), 0);
    EXPECT_TRUE(IsNear(loaded.picture.at(30, 20), Gradient(30, 20), 4));
  }
}

TEST_F(Jpeg, ProgressiveFilesGiveTheSamePictureAsSequentialOnes) {
  JpegSpec spec = JpegOf(GradientPicture(61, 43));
  const Loaded sequential = Load(EncodeJpeg(spec));
  spec.progressive = true;
  const Loaded progressive = Load(EncodeJpeg(spec));
  ASSERT_EQ(progressive.error, noErr) << progressive.text;
  EXPECT_EQ(LargestDifference(progressive.picture, sequential.picture), 0);
}

/// The picture drawn with its sides divided by `by`.
Picture Reduced(const std::string& path, int32_t by, int32_t divided) {
  const Opened opened = OpenStill(path);
  EXPECT_EQ(opened.error, noErr) << opened.text;
  EXPECT_EQ(StillImporterReduce(opened.importer, by), divided);
  StillRect bounds{};
  EXPECT_EQ(GraphicsImportGetNaturalBounds(opened.importer, &bounds), noErr);
  Picture picture{bounds.right, bounds.bottom, {}};
  picture.pixels.resize(size_t{1} * picture.width * picture.height);
  GWorldPtr world = nullptr;
  EXPECT_EQ(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                               picture.pixels.data(), 4 * picture.width),
            noErr);
  EXPECT_EQ(GraphicsImportSetGWorld(opened.importer, world, nullptr), noErr);
  EXPECT_EQ(GraphicsImportDraw(opened.importer), noErr) << StillImporterLastError();
  DisposeGWorld(world);
  CloseComponent(opened.importer);
  return picture;
}

TEST_F(Jpeg, CanBeDrawnSmallerThanItIs) {
  for (const bool progressive : {false, true}) {
    JpegSpec spec = JpegOf(GradientPicture(61, 43));
    spec.progressive = progressive;
    const std::string path = Write("photo.jpg", EncodeJpeg(spec));
    for (const auto& [by, divided] : {std::pair{2, 2}, {3, 2}, {4, 4}, {8, 8}, {1000, 8}}) {
      const Picture small = Reduced(path, by, divided);
      EXPECT_EQ(small.width, (61 + divided - 1) / divided);
      EXPECT_EQ(small.height, (43 + divided - 1) / divided);
      // The middle of what a small pixel stands for.
      const int x = 3 * divided + divided / 2, y = 2 * divided + divided / 2;
      EXPECT_TRUE(IsNear(small.at(3, 2), Gradient(x, y), 3 + divided)) << by;
    }
    EXPECT_EQ(LargestDifference(Reduced(path, 1, 1), LoadStill(path).picture), 0);
    EXPECT_EQ(LargestDifference(Reduced(path, 0, 1), LoadStill(path).picture), 0);
  }
}

TEST_F(Jpeg, IsUprightWhereItIsSmaller) {
  JpegSpec spec = JpegOf(GradientPicture(64, 32));
  const Picture plain = Reduced(Write("plain.jpg", EncodeJpeg(spec)), 4, 4);
  spec.exif = ExifBlock(6);
  const Picture turned = Reduced(Write("turned.jpg", EncodeJpeg(spec)), 4, 4);
  ASSERT_EQ(turned.width, 8);
  ASSERT_EQ(turned.height, 16);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 16; ++x) EXPECT_EQ(turned.at(7 - y, x), plain.at(x, y));
  }
}

TEST_F(Jpeg, OtherFormsAreDrawnAsLargeAsTheyAre) {
  const test::Rgb blue{1, 2, 200};
  test::WritePhoto(Path("photo.bmp"), 20, 10, [&](int32_t, int32_t) { return blue; });
  EXPECT_EQ(Reduced(Path("photo.bmp"), 8, 1).width, 20);
  EXPECT_EQ(StillImporterReduce(nullptr, 8), 1);
}

TEST_F(Jpeg, GreyIsGrey) {
  JpegSpec spec;
  spec.width = spec.height = 16;
  spec.kind = JpegKind::kGrey;
  spec.quality = 100;
  for (int i = 0; i < 256; ++i) spec.samples.push_back(static_cast<uint8_t>(i % 16 * 16));
  const Loaded loaded = Load(EncodeJpeg(spec));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  for (int x = 0; x < 16; ++x) {
    const uint8_t v = static_cast<uint8_t>(x * 16);
    EXPECT_TRUE(IsNear(loaded.picture.at(x, 8), Rgb(v, v, v), 2)) << x;
  }
}

/// A flat picture of four stored bytes.
JpegSpec Ink(JpegKind kind, std::initializer_list<uint8_t> stored) {
  JpegSpec spec;
  spec.width = spec.height = 8;
  spec.kind = kind;
  spec.quality = 100;
  for (int i = 0; i < 64; ++i) spec.samples.insert(spec.samples.end(), stored);
  return spec;
}

TEST_F(Jpeg, InkOfTheAdobeKindIsStoredAsTheLightThatPasses) {
  // 200 of 255 in red, 100 in green, 50 in blue, and black letting half of that through.
  const Loaded loaded = Load(EncodeJpeg(Ink(JpegKind::kCmyk, {200, 100, 50, 128})));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(4, 4), Rgb(100, 50, 25), 1));
}

TEST_F(Jpeg, InkAsLumaAndChromaOfTheAdobeKind) {
  const Loaded loaded = Load(EncodeJpeg(Ink(JpegKind::kYcck, {200, 100, 50, 128})));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(4, 4), Rgb(100, 50, 25), 2));
}

TEST_F(Jpeg, InkWithoutTheAdobeMarkerIsInk) {
  JpegSpec spec = Ink(JpegKind::kCmyk, {55, 155, 205, 127});
  spec.adobe_marker = false;
  const Loaded loaded = Load(EncodeJpeg(spec));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(4, 4), Rgb(100, 50, 25), 1));
}

TEST_F(Jpeg, TruncatedAnywhereIsAnErrorAndNotAHalfGreyPicture) {
  for (const bool progressive : {false, true}) {
    JpegSpec spec = JpegOf(GradientPicture(64, 64));
    spec.progressive = progressive;
    const Bytes whole = EncodeJpeg(spec);
    ASSERT_EQ(Load(whole, "photo.jpg").error, noErr);
    for (const size_t left :
         {whole.size() / 3, whole.size() / 2, whole.size() - 40, whole.size() - 2}) {
      const Loaded loaded =
          Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "photo.jpg");
      EXPECT_EQ(loaded.error, codecBadDataErr) << left;
      EXPECT_EQ(loaded.text, "photo.jpg: truncated JPEG (Premature end of JPEG file)") << left;
    }
  }
}

TEST_F(Jpeg, DamagedEntropyDataIsAnError) {
  const Bytes whole = EncodeJpeg(JpegOf(GradientPicture(64, 64)));
  Bytes damaged = whole;
  // A marker in the middle of the scan ends the data there.
  damaged[whole.size() - 60] = 0xff;
  damaged[whole.size() - 59] = 0xd9;
  const Loaded loaded = Load(damaged, "photo.jpg");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text.rfind("photo.jpg: damaged JPEG (", 0), 0u) << loaded.text;
}

TEST_F(Jpeg, StrayBytesBeforeTheEndMarkerAndBehindItAreHarmless) {
  // Cameras pad with zeros and append thumbnails and films.
  Bytes bytes = EncodeJpeg(JpegOf(GradientPicture(16, 16)));
  // More than the entropy decoder reads ahead.
  bytes.insert(bytes.end() - 2, 100, uint8_t{0});
  bytes.insert(bytes.end(), 100, uint8_t{0x55});
  EXPECT_EQ(Load(bytes).error, noErr);
}

TEST_F(Jpeg, SegmentsThatLieAboutTheirLengthDoNoHarm) {
  const Bytes plain = EncodeJpeg(JpegOf(GradientPicture(16, 16)));
  const Bytes exif = ExifBlock(6);
  // The profile's only part claims to be the second of one, then the first of none.
  const Bytes name = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0};
  for (const Bytes& part : {Bytes{2, 1, 9}, Bytes{1, 0, 9}, Bytes{0, 1, 9}, Bytes{1, 2, 9}}) {
    Bytes segment = name;
    Append(segment, part);
    const Loaded loaded = Load(WithSegment(plain, 0xe2, segment));
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_EQ(LargestDifference(loaded.picture, PlainDecode(plain)), 0);
  }
  for (size_t left = 6; left < exif.size(); ++left) {
    const Bytes cut(exif.begin(), exif.begin() + static_cast<ptrdiff_t>(left));
    EXPECT_EQ(Load(WithSegment(plain, 0xe1, cut)).error, noErr) << left;
  }
}

TEST_F(Jpeg, AProfileInSeveralPartsIsPutTogetherInWhateverOrderTheyCome) {
  const Bytes plain = EncodeJpeg(JpegOf({8, 8, std::vector<Pixel>(64, Rgb(255, 0, 0))}));
  const Bytes icc = SwappedProfile();
  Bytes bytes = plain;
  const size_t third = icc.size() / 3;
  // WithSegment puts each part before those already there, so they come out as 2, 3, 1.
  for (const int part : {1, 3, 2}) {
    Bytes segment = {
        'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, static_cast<uint8_t>(part), 3};
    const auto from = icc.begin() + static_cast<ptrdiff_t>(third) * (part - 1);
    Append(segment, Bytes(from, part == 3 ? icc.end() : from + static_cast<ptrdiff_t>(third)));
    bytes = WithSegment(bytes, 0xe2, segment);
  }
  const Loaded loaded = Load(bytes);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(4, 4), Rgb(0, 255, 0), 3));
}

TEST_F(Jpeg, FormsThatTheLibraryCannotReadAreSaidToBeUnsupported) {
  Bytes bytes = EncodeJpeg(JpegOf(GradientPicture(16, 16)));
  for (size_t i = 0; i + 1 < bytes.size(); ++i) {
    if (bytes[i] == 0xff && bytes[i + 1] == 0xc0) {
      bytes[i + 1] = 0xc3;  // lossless
      break;
    }
  }
  const Loaded loaded = Load(bytes, "scan.jpg");
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text.rfind("scan.jpg: unsupported JPEG (", 0), 0u) << loaded.text;
}

}  // namespace
}  // namespace kelto::stills
