// Random damage to files of every format: a picture or an error, never a crash.
#include <gif_lib.h>
#include <webp/encode.h>

#include <random>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

constexpr int64_t kMostPixels = 4 << 20;

class Damage : public StillTest {
 protected:
  /// Cuts the file, changes some bytes, or both, and loads it.
  void Survives(const Bytes& whole, const std::string& name, int rounds = 300) const {
    ASSERT_EQ(Load(whole, name).error, noErr) << StillImporterLastError();
    std::mt19937 random(20240607);
    const auto below = [&](size_t limit) {
      return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    };
    int pictures = 0, errors = 0;
    for (int round = 0; round < rounds; ++round) {
      Bytes bytes = whole;
      if (round % 3 == 0) bytes.resize(below(bytes.size()));
      if (round % 3 != 0 || round % 2 == 0) {
        // Headers are short and matter most.
        const size_t changes = 1 + below(8);
        for (size_t i = 0; i < changes && !bytes.empty(); ++i) {
          const size_t range = below(2) == 0 ? bytes.size() : std::min<size_t>(bytes.size(), 200);
          bytes[below(range)] = static_cast<uint8_t>(below(256));
        }
      }
      const Loaded loaded = LoadStill(Write(name, bytes), kMostPixels);
      ++(loaded.error == noErr ? pictures : errors);
      if (loaded.error != noErr) {
        ASSERT_FALSE(loaded.text.empty());
        ASSERT_EQ(loaded.text.rfind(name + ": ", 0), 0u) << loaded.text;
      }
    }
    RecordProperty("pictures", pictures);
    EXPECT_GE(errors, rounds / 10) << "damage was hardly ever noticed";
  }
};

JpegSpec RichJpeg() {
  JpegSpec spec = JpegOf(GradientPicture(40, 30));
  spec.exif = ExifBlock(6);
  spec.icc = DisplayP3Profile();
  return spec;
}

TEST_F(Damage, Jpeg) { Survives(EncodeJpeg(RichJpeg()), "a.jpg"); }

TEST_F(Damage, ProgressiveJpeg) {
  JpegSpec spec = RichJpeg();
  spec.progressive = true;
  spec.full_chroma = false;
  Survives(EncodeJpeg(spec), "a.jpg");
}

JpegSpec InkJpeg() {
  JpegSpec spec;
  spec.width = spec.height = 24;
  spec.kind = JpegKind::kYcck;
  for (int i = 0; i < 24 * 24 * 4; ++i) spec.samples.push_back(static_cast<uint8_t>(i * 37));
  return spec;
}

TEST_F(Damage, InkJpeg) { Survives(EncodeJpeg(InkJpeg()), "a.jpg"); }

TEST_F(Damage, InkProfile) {
  JpegSpec spec = InkJpeg();
  spec.icc = InkProfile();
  // Fewer rounds: tables of four inks take long to prepare.
  Survives(EncodeJpeg(spec), "a.jpg", 60);
}

void AddProfileAndExif(png_structp png, png_infop info) {
  const Bytes icc = WideGammaProfile();
  png_set_iCCP(png, info, "p", PNG_COMPRESSION_TYPE_BASE, icc.data(),
               static_cast<png_uint_32>(icc.size()));
  Bytes exif = ExifBlock(5, true, true);
  png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
}

TEST_F(Damage, Png) {
  PngSpec spec = PngOf(GradientPicture(40, 30));
  spec.chunks = AddProfileAndExif;
  Survives(EncodePng(spec), "a.png");
}

TEST_F(Damage, InterlacedPngOfSixteenBits) {
  PngSpec spec;
  spec.width = spec.height = 24;
  spec.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  spec.bit_depth = 16;
  spec.interlaced = true;
  for (int i = 0; i < 24 * 24 * 8; ++i) spec.rows.push_back(static_cast<uint8_t>(i * 31));
  spec.chunks = AddProfileAndExif;
  Survives(EncodePng(spec), "a.png");
}

TEST_F(Damage, PalettePng) {
  PngSpec spec;
  spec.width = spec.height = 16;
  spec.color_type = PNG_COLOR_TYPE_PALETTE;
  spec.bit_depth = 4;
  for (int i = 0; i < 16 * 8; ++i) spec.rows.push_back(static_cast<uint8_t>(i * 29));
  spec.chunks = [](png_structp png, png_infop info) {
    const std::vector<png_color> palette(16, {1, 2, 3});
    png_set_PLTE(png, info, palette.data(), 16);
  };
  Survives(EncodePng(spec), "a.png");
}

TEST_F(Damage, Tiff) {
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                COMPRESSION_PACKBITS, COMPRESSION_JPEG}) {
    for (const bool tiled : {false, true}) {
      TiffSpec spec = GradientTiff(40, 30);
      spec.compression = compression;
      spec.tile = tiled ? 16 : 0;
      spec.rows_per_strip = 8;
      const Bytes icc = SwappedProfile();
      spec.tags = [&](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, 7);
        if (tiled) return;
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(icc.size()), icc.data());
      };
      // The directory behind the pixels is what matters, so it is damaged as often as they are.
      Survives(EncodeTiff(spec, Path("whole.tif")), "a.tif");
    }
  }
}

TEST_F(Damage, TiffInPlanesWithAlphaAndPalettes) {
  TiffSpec spec = GradientTiff(20, 15);
  spec.samples = 4;
  spec.bits = 16;
  spec.separate = true;
  spec.tags = [](TIFF* tiff) {
    const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  };
  Survives(EncodeTiff(spec, Path("whole.tif")), "a.tif");
  spec = GradientTiff(20, 15);
  spec.samples = 1;
  spec.bits = 4;
  spec.photometric = PHOTOMETRIC_PALETTE;
  spec.sample = [](int x, int, int) { return static_cast<unsigned>(x) % 16; };
  std::vector<uint16_t> colors(16, 999);
  spec.tags = [&](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_COLORMAP, colors.data(), colors.data(), colors.data());
  };
  Survives(EncodeTiff(spec, Path("whole.tif")), "a.tif");
}

TEST_F(Damage, Webp) {
  const Picture picture = GradientPicture(40, 30);
  for (const bool lossless : {false, true}) {
    uint8_t* out = nullptr;
    const size_t size = lossless ? WebPEncodeLosslessBGRA(&picture.pixels[0].b, 40, 30, 160, &out)
                                 : WebPEncodeBGRA(&picture.pixels[0].b, 40, 30, 160, 80, &out);
    Survives(Bytes(out, out + size), "a.webp");
    WebPFree(out);
  }
}

TEST_F(Damage, Gif) {
  Bytes bytes;
  int error = 0;
  GifFileType* gif = EGifOpen(
      &bytes,
      [](GifFileType* file, const GifByteType* data, int count) {
        Bytes& to = *static_cast<Bytes*>(file->UserData);
        to.insert(to.end(), data, data + count);
        return count;
      },
      &error);
  const std::vector<GifColorType> colors(16, {9, 99, 199});
  ColorMapObject* map = GifMakeMapObject(16, colors.data());
  EGifPutScreenDesc(gif, 40, 30, 8, 0, map);
  const GraphicsControlBlock control = {0, false, 10, 3};
  GifByteType block[4];
  EGifGCBToExtension(&control, block);
  EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, block);
  EGifPutImageDesc(gif, 2, 3, 36, 26, false, nullptr);
  for (int y = 0; y < 26; ++y) {
    Bytes line(36);
    for (size_t x = 0; x < 36; ++x)
      line[x] = static_cast<uint8_t>((x * 5 + static_cast<size_t>(y)) % 16);
    EGifPutLine(gif, line.data(), 36);
  }
  EGifCloseFile(gif, &error);
  GifFreeMapObject(map);
  Survives(bytes, "a.gif");
}

TEST_F(Damage, BmpAndTga) {
  Bytes bmp(54 + 60 * 9, 0x33);
  const Bytes header = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0,
                        20,  0,   0, 0, 9, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0,  0, 0, 0,
                        0,   0,   0, 0, 0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0};
  std::copy(header.begin(), header.end(), bmp.begin());
  Survives(bmp, "a.bmp");
  Bytes tga = {0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 128, 0, 4, 0, 32, 0x28};
  for (int i = 0; i < 4; ++i) Append(tga, {0xff, 1, 2, 3, 200});
  Survives(tga, "a.tga");
  Bytes raw = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 20, 0, 20, 0, 24, 0};
  Append(raw, Bytes(1200, 0x44));
  Survives(raw, "a.tga");
}

}  // namespace
}  // namespace kelto::stills
