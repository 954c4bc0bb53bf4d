// Writes the seeds of the fuzz targets into a folder: small stills of every form, and the inputs of
// the other targets that a random start would take long to find.
#include <gif_lib.h>
#include <libheif/heif.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include <bit>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/encode_tiff.h"
#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"

namespace kelto::stills {
namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 13, kHeight = 9;

class Folder {
 public:
  explicit Folder(fs::path path) : path_(std::move(path)) { fs::create_directories(path_); }
  void Write(const std::string& name, const Bytes& bytes) const {
    std::ofstream(path_ / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  fs::path path_;
};

void WriteJpegs(const Folder& folder) {
  JpegSpec spec = JpegOf(GradientPicture(kWidth, kHeight));
  spec.quality = 60;
  folder.Write("baseline.jpg", EncodeJpeg(spec));
  spec.full_chroma = false;
  spec.exif = ExifBlock(6);
  spec.icc = SwappedProfile();
  folder.Write("turned-with-profile.jpg", EncodeJpeg(spec));
  spec.exif = spec.icc = {};
  spec.progressive = true;
  folder.Write("progressive.jpg", EncodeJpeg(spec));
  for (const auto& [name, kind] :
       {std::pair("grey.jpg", JpegKind::kGrey), std::pair("cmyk.jpg", JpegKind::kCmyk),
        std::pair("ycck.jpg", JpegKind::kYcck)}) {
    JpegSpec other;
    other.width = other.height = 8;
    other.kind = kind;
    other.samples.assign(size_t{8} * 8 * (kind == JpegKind::kGrey ? 1 : 4), 100);
    folder.Write(name, EncodeJpeg(other));
  }
}

void WritePngs(const Folder& folder) {
  folder.Write("rgb.png", EncodePng(PngOf(GradientPicture(kWidth, kHeight))));
  PngSpec interlaced = PngOf(GradientPicture(kWidth, kHeight));
  interlaced.interlaced = true;
  interlaced.chunks = [](png_structp png, png_infop info) {
    Bytes exif = ExifBlock(5, true, true);
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
    png_set_gAMA(png, info, 1 / 1.8);
    png_set_cHRM(png, info, 0.3127, 0.3290, 0.68, 0.32, 0.265, 0.69, 0.15, 0.06);
  };
  folder.Write("interlaced-turned.png", EncodePng(interlaced));
  PngSpec words;
  words.width = words.height = 4;
  words.bit_depth = 16;
  words.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
  words.rows.assign(size_t{4} * 4 * 8, 0x7f);
  words.chunks = [](png_structp png, png_infop info) {
    const Bytes icc = LinearProfile();
    png_set_iCCP(png, info, "p", PNG_COMPRESSION_TYPE_BASE, icc.data(),
                 static_cast<png_uint_32>(icc.size()));
  };
  folder.Write("words-alpha-profile.png", EncodePng(words));
  words.interlaced = true;
  words.color_type = PNG_COLOR_TYPE_GRAY_ALPHA;
  words.rows.assign(size_t{4} * 4 * 4, 0x7f);
  words.chunks = [](png_structp png, png_infop info) {
    Bytes exif = ExifBlock(6, true, true);
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
  };
  folder.Write("words-interlaced-turned.png", EncodePng(words));
  PngSpec palette;
  palette.width = 8, palette.height = 2, palette.bit_depth = 2;
  palette.color_type = PNG_COLOR_TYPE_PALETTE;
  palette.rows = {0x1b, 0x1b, 0xe4, 0xe4};
  palette.chunks = [](png_structp png, png_infop info) {
    const png_color colors[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {9, 9, 9}};
    const png_byte alpha[] = {0, 128};
    png_set_PLTE(png, info, colors, 4);
    png_set_tRNS(png, info, alpha, 2, nullptr);
  };
  folder.Write("palette.png", EncodePng(palette));
}

void WriteTiffs(const Folder& folder) {
  const auto write = [&](const std::string& name, const auto& change) {
    TiffSpec spec = GradientTiff(kWidth, kHeight);
    change(spec);
    EncodeTiff(spec, folder / name);
  };
  write("strips.tif", [](TiffSpec& spec) { spec.mode = "wb"; });
  write("tiles.tif", [](TiffSpec& spec) { spec.tile = 16, spec.compression = COMPRESSION_LZW; });
  write("planes.tif", [](TiffSpec& spec) {
    spec.separate = true, spec.mode = "w8", spec.compression = COMPRESSION_PACKBITS;
  });
  write("words.tif", [](TiffSpec& spec) {
    spec.bits = 16, spec.samples = 4, spec.compression = COMPRESSION_ADOBE_DEFLATE;
    spec.tags = [](TIFF* tiff) {
      const uint16_t extra = EXTRASAMPLE_ASSOCALPHA;
      TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
      const Bytes icc = SwappedProfile();
      TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(icc.size()), icc.data());
      TIFFSetField(tiff, TIFFTAG_ORIENTATION, 7);
    };
  });
  write("floats.tif", [](TiffSpec& spec) {
    spec.bits = 32, spec.samples = 4, spec.compression = COMPRESSION_ADOBE_DEFLATE;
    spec.sample = [](int x, int y, int s) {
      return std::bit_cast<unsigned>(static_cast<float>(x - y + s) / 4);
    };
    spec.tags = [](TIFF* tiff) {
      const uint16_t extra = EXTRASAMPLE_UNASSALPHA;
      TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
      TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
      const Bytes icc = SwappedProfile();
      TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(icc.size()), icc.data());
    };
  });
  write("ink-words.tif", [](TiffSpec& spec) {
    spec.bits = 16, spec.samples = 4, spec.photometric = PHOTOMETRIC_SEPARATED;
    spec.separate = true;
  });
  write("bits.tif", [](TiffSpec& spec) {
    spec.bits = 1, spec.samples = 1, spec.photometric = PHOTOMETRIC_MINISWHITE;
    spec.compression = COMPRESSION_CCITTFAX4;
    spec.sample = [](int x, int y, int) { return static_cast<unsigned>((x ^ y) & 1); };
  });
  write("palette.tif", [](TiffSpec& spec) {
    spec.bits = 4, spec.samples = 1, spec.photometric = PHOTOMETRIC_PALETTE, spec.width = 12;
    spec.sample = [](int x, int y, int) { return static_cast<unsigned>((x + y) & 15); };
    spec.tags = [](TIFF* tiff) {
      uint16_t ramp[16];
      for (int i = 0; i < 16; ++i) ramp[i] = static_cast<uint16_t>(i * 4096);
      TIFFSetField(tiff, TIFFTAG_COLORMAP, ramp, ramp, ramp);
    };
  });
  write("lab.tif", [](TiffSpec& spec) { spec.photometric = PHOTOMETRIC_CIELAB; });
  write("ink.tif",
        [](TiffSpec& spec) { spec.samples = 4, spec.photometric = PHOTOMETRIC_SEPARATED; });
  write("jpeg.tif", [](TiffSpec& spec) {
    spec.compression = COMPRESSION_JPEG, spec.width = spec.height = 16, spec.rows_per_strip = 8;
  });
}

int OnGifWrite(GifFileType* gif, const GifByteType* data, int count) {
  Bytes& bytes = *static_cast<Bytes*>(gif->UserData);
  bytes.insert(bytes.end(), data, data + count);
  return count;
}

Bytes EncodeGif(bool interlaced, int left) {
  Bytes bytes;
  int error = 0;
  GifFileType* gif = EGifOpen(&bytes, OnGifWrite, &error);
  GifColorType colors[16];
  for (int i = 0; i < 16; ++i) colors[i] = {static_cast<uint8_t>(i * 16), 100, 7};
  ColorMapObject* map = GifMakeMapObject(16, colors);
  EGifPutScreenDesc(gif, kWidth, kHeight, 8, 0, map);
  for (int frame = 0; frame < 2; ++frame) {
    const GraphicsControlBlock control = {0, false, 10, 3};
    GifByteType block[4];
    EGifGCBToExtension(&control, block);
    EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, block);
    EGifPutImageDesc(gif, left, 1, kWidth, kHeight - 1, interlaced, nullptr);
    for (int y = 0; y < kHeight - 1; ++y) {
      GifPixelType line[kWidth];
      for (int x = 0; x < kWidth; ++x) line[x] = static_cast<GifPixelType>((x * 7 + y * 3) % 16);
      EGifPutLine(gif, line, kWidth);
    }
  }
  EGifCloseFile(gif, &error);
  GifFreeMapObject(map);
  return bytes;
}

void WriteWebps(const Folder& folder) {
  const Picture picture = GradientPicture(kWidth, kHeight);
  uint8_t* out = nullptr;
  size_t size = WebPEncodeLosslessBGRA(&picture.pixels[0].b, kWidth, kHeight, kWidth * 4, &out);
  const Bytes lossless(out, out + size);
  WebPFree(out);
  folder.Write("lossless.webp", lossless);
  size = WebPEncodeBGRA(&picture.pixels[0].b, kWidth, kHeight, kWidth * 4, 60, &out);
  folder.Write("lossy.webp", Bytes(out, out + size));
  WebPFree(out);
  const WebPData image = {lossless.data(), lossless.size()};
  WebPMux* mux = WebPMuxCreate(&image, 1);
  const Bytes icc = SwappedProfile(), exif = ExifBlock(8, false, true);
  const WebPData icc_data = {icc.data(), icc.size()}, exif_data = {exif.data(), exif.size()};
  WebPMuxSetChunk(mux, "ICCP", &icc_data, 1);
  WebPMuxSetChunk(mux, "EXIF", &exif_data, 1);
  WebPData assembled = {};
  WebPMuxAssemble(mux, &assembled);
  folder.Write("chunks.webp", Bytes(assembled.bytes, assembled.bytes + assembled.size));
  WebPDataClear(&assembled);
  WebPMuxDelete(mux);
}

heif_error OnHeifWrite(heif_context*, const void* data, size_t size, void* user) {
  Bytes& bytes = *static_cast<Bytes*>(user);
  bytes.insert(bytes.end(), static_cast<const uint8_t*>(data),
               static_cast<const uint8_t*>(data) + size);
  return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

/// Nothing is written where libheif has no encoder for the format.
void WriteHeif(const Folder& folder, const std::string& name, heif_compression_format format) {
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  if (heif_context_get_encoder_for_format(context, format, &encoder).code == heif_error_Ok) {
    heif_encoder_set_lossy_quality(encoder, 50);
    heif_image* image = nullptr;
    heif_image_create(16, 16, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, &image);
    heif_image_add_plane(image, heif_channel_interleaved, 16, 16, 8);
    int row_bytes = 0;
    uint8_t* rows = heif_image_get_plane(image, heif_channel_interleaved, &row_bytes);
    for (int i = 0; i < 16 * row_bytes; ++i) rows[i] = static_cast<uint8_t>(i);
    heif_image_handle* handle = nullptr;
    heif_context_encode_image(context, image, encoder, nullptr, &handle);
    Bytes bytes;
    heif_writer writer = {1, OnHeifWrite};
    heif_context_write(context, &writer, &bytes);
    folder.Write(name, bytes);
    heif_image_handle_release(handle);
    heif_image_release(image);
    heif_encoder_release(encoder);
  }
  heif_context_free(context);
}

void Put(Bytes& bytes, uint64_t value, int count) {
  for (int i = 0; i < count; ++i, value >>= 8) bytes.push_back(static_cast<uint8_t>(value));
}

Bytes EncodeBmp(int bits, int32_t height) {
  Bytes bytes = {'B', 'M'};
  const uint64_t palette = bits <= 8 ? (uint64_t{1} << bits) * 4 : 0;
  Put(bytes, 0, 8);
  Put(bytes, 54 + palette, 4);
  Put(bytes, 40, 4);
  Put(bytes, kWidth, 4);
  Put(bytes, static_cast<uint32_t>(height), 4);
  Put(bytes, 1, 2);
  Put(bytes, static_cast<uint64_t>(bits), 2);
  Put(bytes, 0, 24);
  const size_t row = (static_cast<size_t>(kWidth * bits) + 31) / 32 * 4;
  const size_t end = bytes.size() + palette + row * kHeight;
  while (bytes.size() < end) bytes.push_back(static_cast<uint8_t>(bytes.size() * 37));
  return bytes;
}

Bytes EncodeTga(int type, int depth, uint8_t descriptor) {
  Bytes bytes = {0, static_cast<uint8_t>(type % 8 == 1), static_cast<uint8_t>(type)};
  const bool mapped = type % 8 == 1;
  Put(bytes, 0, 2);
  Put(bytes, mapped ? 16 : 0, 2);
  Put(bytes, mapped ? 24 : 0, 1);
  Put(bytes, 0, 4);
  Put(bytes, kWidth, 2);
  Put(bytes, kHeight, 2);
  Put(bytes, static_cast<uint64_t>(depth), 1);
  Put(bytes, descriptor, 1);
  for (int i = 0; mapped && i < 48; ++i) bytes.push_back(static_cast<uint8_t>(i * 5));
  for (int y = 0; y < kHeight; ++y) {
    // A packed row: one pixel that is repeated, then the others as they are.
    if (type > 8) Append(bytes, {0x83, 1, 2, 3, 4, kWidth - 4 - 1});
    const int pixels = type > 8 ? kWidth - 4 : kWidth;
    for (int i = 0; i < pixels * depth / 8; ++i) {
      bytes.push_back(static_cast<uint8_t>(mapped ? i % 16 : i + y));
    }
  }
  return bytes;
}

void WriteStills(const Folder& folder) {
  WriteJpegs(folder);
  WritePngs(folder);
  WriteTiffs(folder);
  WriteWebps(folder);
  folder.Write("plain.gif", EncodeGif(false, 0));
  folder.Write("interlaced.gif", EncodeGif(true, 4));
  WriteHeif(folder, "hevc.heic", heif_compression_HEVC);
  WriteHeif(folder, "av1.avif", heif_compression_AV1);
  folder.Write("24.bmp", EncodeBmp(24, kHeight));
  folder.Write("8.bmp", EncodeBmp(8, -kHeight));
  folder.Write("32.bmp", EncodeBmp(32, kHeight));
  folder.Write("rgb.tga", EncodeTga(2, 24, 0x10));
  folder.Write("packed.tga", EncodeTga(10, 32, 0x28));
  folder.Write("mapped.tga", EncodeTga(1, 8, 0));
}

/// Inputs that mean something whatever they hold: a few of random bytes are a start.
void WriteRandom(const Folder& folder, uint32_t seed, size_t length) {
  std::mt19937 random(seed);
  for (int i = 0; i < 8; ++i) {
    Bytes bytes(length);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    folder.Write("random-" + std::to_string(i), bytes);
  }
}

}  // namespace
}  // namespace kelto::stills

int main(int argc, char** argv) {
  using namespace kelto::stills;
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER\n");
    return 2;
  }
  const fs::path folder = argv[1];
  WriteStills(Folder(folder / "stills"));
  WriteRandom(Folder(folder / "curves"), 1, 300);
  WriteRandom(Folder(folder / "engine"), 2, 110);
  WriteRandom(Folder(folder / "host"), 3, 400);
}
