// Small files that would become large: each is refused, or read, at the cost that the limits state.
#include <gtest/gtest.h>
#include <webp/encode.h>
#include <webp/mux.h>
#include <zlib.h>

#include <filesystem>
#include <memory>

#include "runtime/stills/limits.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"
#include "tests/support/hostile_files.h"
#include "tests/support/peak_memory.h"

namespace kelto::stills {
namespace {

using test::PeakMemory;

class Bomb : public StillTest {
 protected:
  /// Opens and draws; pixels that are never written take no memory.
  Loaded Draw(const std::string& path) const {
    Loaded loaded;
    const Opened opened = OpenStill(path);
    loaded.error = opened.error;
    loaded.text = opened.text;
    if (opened.error != noErr) return loaded;
    StillRect bounds;
    GraphicsImportGetNaturalBounds(opened.importer, &bounds);
    const size_t width = static_cast<size_t>(bounds.right),
                 height = static_cast<size_t>(bounds.bottom);
    const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(width * height * 4);
    GWorldPtr world = nullptr;
    QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0, pixels.get(),
                       static_cast<int32_t>(width * 4));
    GraphicsImportSetGWorld(opened.importer, world, nullptr);
    loaded.error = GraphicsImportDraw(opened.importer);
    loaded.text = StillImporterLastError();
    DisposeGWorld(world);
    CloseComponent(opened.importer);
    return loaded;
  }

  /// Bytes behind the picture's end, so that its size alone does not look suspicious.
  static Bytes Padded(Bytes bytes, size_t size) {
    bytes.resize(size);
    return bytes;
  }
};

TEST_F(Bomb, AFileBeyondWhatACodecMayHoldWholeIsRefusedUnread) {
  const std::string path =
      Write("large.webp", {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'E', 'B', 'P'});
  std::filesystem::resize_file(path, kMaxWholeFileBytes + (1 << 20));
  const PeakMemory peak;
  EXPECT_EQ(Draw(path).text, "large.webp: a file of 513 MiB; the limit for its form is 512 MiB");
  EXPECT_LE(peak.MiB(), 2);
}

TEST_F(Bomb, AnInterlacedPngOfWordsIsRefusedBeforeItsRowsAreKept) {
  PngSpec spec;
  spec.width = spec.height = 8;
  spec.bit_depth = 16;
  spec.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  spec.rows.assign(size_t{8} * 8 * 8, 0x7f);
  spec.interlaced = true;
  spec.chunks = [](png_structp png, png_infop info) {
    const Bytes icc = LinearProfile();
    png_set_iCCP(png, info, "p", PNG_COMPRESSION_TYPE_BASE, icc.data(),
                 static_cast<png_uint_32>(icc.size()));
  };
  Bytes bytes = EncodePng(spec);
  // The same header with other sizes.
  Bytes header(bytes.begin() + 16, bytes.begin() + 29);
  header[2] = header[6] = 17000 / 256;
  header[3] = header[7] = 17000 % 256;
  const Bytes chunk = PngChunk("IHDR", header);
  std::copy(chunk.begin(), chunk.end(), bytes.begin() + 8);
  const PeakMemory peak;
  const Opened opened = OpenStill(Write("bomb.png", Padded(bytes, 100000)));
  EXPECT_EQ(opened.error, codecBadDataErr);
  EXPECT_EQ(opened.text,
            "bomb.png: decoding needs 2204 MiB of working memory; the limit is 2048 MiB");
  EXPECT_LE(peak.MiB(), 8);
}

TEST_F(Bomb, AProgressiveJpegIsRefusedBeforeItsCoefficientsAreKept) {
  JpegSpec spec = JpegOf(GradientPicture(16, 16));
  spec.progressive = true;
  Bytes bytes = EncodeJpeg(spec);
  for (size_t i = 0; i + 8 < bytes.size(); ++i) {
    if (bytes[i] != 0xff || bytes[i + 1] != 0xc2) continue;
    bytes[i + 5] = bytes[i + 7] = 20000 / 256;
    bytes[i + 6] = bytes[i + 8] = 20000 % 256;
    break;
  }
  const PeakMemory peak;
  const Opened opened = OpenStill(Write("bomb.jpg", Padded(bytes, 200000)));
  EXPECT_EQ(opened.error, codecBadDataErr);
  EXPECT_EQ(opened.text,
            "bomb.jpg: decoding needs 2288 MiB of working memory; the limit is 2048 MiB");
  EXPECT_LE(peak.MiB(), 16);
}

TEST_F(Bomb, PicturesBeyondThePixelLimitAreRefusedWhenOpened) {
  const std::pair<std::string, Bytes> files[] = {
      {"a.png", test::FlatPng(32767)},
      {"b.png", test::FlatPng(23200)},
      {"c.jpg", test::FlatJpeg(30000, true)},
      {"d.jpg", test::FlatJpeg(30000, false)},
      {"e.tif", test::SharedStripsTiff(30000, 2, 10, 200000)},
      {"f.tif", test::SharedStripsTiff(30000, 8, 10, 200000)}};
  for (const auto& [name, bytes] : files) {
    const std::string path = Write(name, bytes);
    const PeakMemory peak;
    const Opened opened = OpenStill(path);
    EXPECT_EQ(opened.error, codecBadDataErr) << name;
    EXPECT_NE(opened.text.find("the limit is 2047 MiB"), std::string::npos) << opened.text;
    EXPECT_LE(peak.MiB(), 8) << name;
  }
}

TEST_F(Bomb, PackedTextsOfAPngTakeNoMemory) {
  const Bytes zeros(64u << 20, 0);
  Bytes packed(1 << 20);
  uLongf packed_size = packed.size();
  ASSERT_EQ(compress(packed.data(), &packed_size, zeros.data(), zeros.size()), Z_OK);
  Bytes content = {'k', 0, 0};
  packed.resize(packed_size);
  Append(content, packed);
  const Bytes chunk = PngChunk("zTXt", content);
  Bytes bytes = EncodePng(PngOf(GradientPicture(8, 8)));
  for (int i = 0; i < 40; ++i) {
    bytes.insert(bytes.begin() + kPngAfterHeader, chunk.begin(), chunk.end());
  }
  const std::string path = Write("texts.png", bytes);
  const PeakMemory peak;
  EXPECT_EQ(Draw(path).error, noErr);
  EXPECT_LE(peak.MiB(), 4);
}

TEST_F(Bomb, OfAGifWithManyFramesOnlyTheFirstIsRead) {
  Bytes bytes = {'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 200, 9, 9, 0, 0, 0};
  const Bytes frame = {0x2c, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 2, 0x44, 1, 0};
  for (int i = 0; i < 300000; ++i) Append(bytes, frame);
  const std::string path = Write("frames.gif", bytes);
  const PeakMemory peak;
  EXPECT_EQ(Draw(path).error, noErr);
  EXPECT_EQ(LoadStill(path).picture.at(0, 0), Rgb(200, 9, 9));
  EXPECT_LE(peak.MiB(), 4);
}

TEST_F(Bomb, OfAWebpWithManyFramesOnlyTheFirstIsDecoded) {
  const Picture picture = {2, 2, std::vector<Pixel>(4, Rgb(9, 200, 9))};
  uint8_t* out = nullptr;
  const size_t size = WebPEncodeLosslessBGRA(&picture.pixels[0].b, 2, 2, 8, &out);
  WebPMuxFrameInfo frame = {};
  frame.bitstream = {out, size};
  frame.id = WEBP_CHUNK_ANMF;
  frame.duration = 1;
  WebPMux* mux = WebPMuxNew();
  for (int i = 0; i < 3000; ++i) WebPMuxPushFrame(mux, &frame, 1);
  const WebPMuxAnimParams animation = {0, 0};
  WebPMuxSetAnimationParams(mux, &animation);
  WebPData assembled = {};
  ASSERT_EQ(WebPMuxAssemble(mux, &assembled), WEBP_MUX_OK);
  const std::string path =
      Write("frames.webp", Bytes(assembled.bytes, assembled.bytes + assembled.size));
  WebPDataClear(&assembled);
  WebPMuxDelete(mux);
  WebPFree(out);
  const PeakMemory peak;
  EXPECT_EQ(Draw(path).error, noErr);
  EXPECT_EQ(LoadStill(path).picture.at(1, 1), Rgb(9, 200, 9));
  EXPECT_LE(peak.MiB(), 8);
}

TEST_F(Bomb, AnExifBlockWhoseDirectoriesContainThemselvesComesToAnEnd) {
  Bytes exif = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0};
  // Orientation 6, then three pointers back to the directory that holds them.
  Append(exif, {4, 0});
  Append(exif, {0x12, 1, 3, 0, 1, 0, 0, 0, 6, 0, 0, 0});
  Append(exif, {0x69, 0x87, 4, 0, 1, 0, 0, 0, 8, 0, 0, 0});
  Append(exif, {0x25, 0x88, 4, 0, 1, 0, 0, 0, 8, 0, 0, 0});
  Append(exif, {0x05, 0xa0, 4, 0, 1, 0, 0, 0, 8, 0, 0, 0});
  Append(exif, {8, 0, 0, 0});
  JpegSpec spec = JpegOf(GradientPicture(16, 8));
  spec.exif = exif;
  const PeakMemory peak;
  const Loaded loaded = Load(EncodeJpeg(spec));
  EXPECT_EQ(loaded.error, noErr);
  EXPECT_EQ(loaded.picture.width, 8) << "turned by orientation 6";
  EXPECT_LE(peak.MiB(), 4);
}

/// Pictures of nine megapixels in every form that takes memory beside the caller's.
class Counted : public Bomb {
 protected:
  static constexpr int kSide = 3000;
  static constexpr int64_t kRowsMiB = 12;  // what is not counted: a few rows, tables of codecs

  /// Draws, and compares what that took with what the header promised.
  void ExpectNoMoreThanCounted(const std::string& path) const {
    const Opened opened = OpenStill(path);
    ASSERT_EQ(opened.error, noErr) << opened.text;
    const auto counted = static_cast<int64_t>(StillImporterScratchBytes(opened.importer) >> 20);
    CloseComponent(opened.importer);
    const PeakMemory peak;
    EXPECT_EQ(Draw(path).text, "");
    constexpr int64_t kPixelsMiB = int64_t{kSide} * kSide * 4 >> 20;
    EXPECT_LE(peak.MiB(), kPixelsMiB + counted + kRowsMiB)
        << path << ": " << counted << " MiB counted";
  }
  static Picture Large() {
    return {kSide, kSide, std::vector<Pixel>(kSide * kSide, Rgb(9, 99, 9))};
  }
};

TEST_F(Counted, Jpeg) {
  JpegSpec spec = JpegOf(Large());
  ExpectNoMoreThanCounted(Write("baseline.jpg", EncodeJpeg(spec)));
  spec.progressive = true;
  ExpectNoMoreThanCounted(Write("progressive.jpg", EncodeJpeg(spec)));
  ExpectNoMoreThanCounted(Write("grey.jpg", test::FlatJpeg(kSide, true)));
}

TEST_F(Counted, Png) {
  PngSpec spec = PngOf(Large());
  ExpectNoMoreThanCounted(Write("plain.png", EncodePng(spec)));
  spec.interlaced = true;
  ExpectNoMoreThanCounted(Write("interlaced.png", EncodePng(spec)));
}

TEST_F(Counted, Tiff) {
  for (const uint16_t photometric : {uint16_t{2}, uint16_t{8}}) {
    for (const uint32_t rows : {10u, uint32_t{kSide}}) {
      ExpectNoMoreThanCounted(
          Write("picture.tif", test::SharedStripsTiff(kSide, photometric, rows)));
    }
  }
}

TEST_F(Counted, Webp) {
  const Picture picture = Large();
  uint8_t* out = nullptr;
  const size_t size = WebPEncodeLosslessBGRA(&picture.pixels[0].b, kSide, kSide, 4 * kSide, &out);
  ExpectNoMoreThanCounted(Write("lossless.webp", Bytes(out, out + size)));
  WebPFree(out);
}

TEST_F(Counted, BmpAndTga) {
  // Uncompressed, 24 bits a pixel.
  Bytes tga = {0, 0, 2, 0,           0,           0,           0,           0,  0,
               0, 0, 0, kSide % 256, kSide / 256, kSide % 256, kSide / 256, 24, 0x20};
  tga.resize(tga.size() + size_t{3} * kSide * kSide, 77);
  ExpectNoMoreThanCounted(Write("picture.tga", tga));
  Bytes bmp = {'B', 'M', 0,           0,           0,  0, 0, 0, 0,           0,
               54,  0,   0,           0,           40, 0, 0, 0, kSide % 256, kSide / 256,
               0,   0,   kSide % 256, kSide / 256, 0,  0, 1, 0, 24,          0};
  bmp.resize(54 + size_t{3} * kSide * kSide, 0);
  ExpectNoMoreThanCounted(Write("picture.bmp", bmp));
}

}  // namespace
}  // namespace kelto::stills
