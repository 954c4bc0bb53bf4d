// A 24-megapixel JPEG from file to cached image, beside the bare decoder to RGB on the same file;
// and the conversions between RGB and 4:2:2 of a 1920 x 1080 frame.
#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <lcms2.h>
#include <stdlib.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "image/cache.h"
#include "image/load.h"
#include "platform/pxcfx.h"

namespace kelto::bench {
namespace {

constexpr uint32_t kWidth = 6000, kHeight = 4000;

struct Instance : PanZoomState {
  ~Instance() override { ReleaseWorkImages(*this); }
};

std::vector<uint8_t> SrgbProfile() {
  cmsHPROFILE profile = cmsCreate_sRGBProfile();
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::vector<uint8_t> bytes(size);
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return bytes;
}

/// A temporary file with a picture of slopes and fine grain, as photographs have.
class PhotoFile {
 public:
  explicit PhotoFile(const std::vector<uint8_t>& profile) {
    const int descriptor = mkstemps(path_, 4);
    FILE* file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
    if (file == nullptr) throw std::runtime_error("no room for a temporary picture");
    jpeg_compress_struct encoder;
    jpeg_error_mgr errors;
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    jpeg_stdio_dest(&encoder, file);
    encoder.image_width = kWidth;
    encoder.image_height = kHeight;
    encoder.input_components = 3;
    encoder.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, 90, TRUE);
    jpeg_start_compress(&encoder, TRUE);
    if (!profile.empty()) {
      jpeg_write_icc_profile(&encoder, profile.data(), static_cast<unsigned>(profile.size()));
    }
    std::vector<uint8_t> row(size_t{3} * kWidth);
    uint32_t noise = 1;
    for (uint32_t y = 0; y < kHeight; ++y) {
      for (uint32_t x = 0; x < kWidth; ++x) {
        noise = noise * 1664525u + 1013904223u;
        const double grain = (noise >> 24) / 32.0 - 4.0;
        const double wave = 60 * std::sin(x * 0.011) * std::cos(y * 0.007);
        for (uint32_t c = 0; c < 3; ++c) {
          row[3 * x + c] = static_cast<uint8_t>(128 + wave * (1 - 0.3 * c) + grain);
        }
      }
      uint8_t* rows[] = {row.data()};
      jpeg_write_scanlines(&encoder, rows, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    fclose(file);
  }
  PhotoFile(const PhotoFile&) = delete;
  PhotoFile& operator=(const PhotoFile&) = delete;
  ~PhotoFile() { unlink(path_); }
  const char* path() const { return path_; }

 private:
  char path_[32] = "/var/tmp/kelto-bench-XXXXXX.jpg";
};

const PhotoFile& Photo() {
  static const PhotoFile photo({});
  return photo;
}

/// As cameras mark theirs; it asks for no conversion.
const PhotoFile& PhotoWithProfile() {
  static const PhotoFile photo(SrgbProfile());
  return photo;
}

void BareDecoder(benchmark::State& state) {
  Photo();
  for ([[maybe_unused]] auto _ : state) {
    std::vector<uint8_t> pixels(size_t{3} * kWidth * kHeight);
    FILE* file = fopen(Photo().path(), "rb");
    jpeg_decompress_struct decoder;
    jpeg_error_mgr errors;
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_stdio_src(&decoder, file);
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = JCS_RGB;
    jpeg_start_decompress(&decoder);
    while (decoder.output_scanline < kHeight) {
      uint8_t* rows[] = {pixels.data() + size_t{3} * kWidth * decoder.output_scanline};
      jpeg_read_scanlines(&decoder, rows, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    fclose(file);
    benchmark::DoNotOptimize(pixels.data());
  }
}

void Load(benchmark::State& state, const PhotoFile& (*photo)(), int32_t levels) {
  iplSetErrMode(IPL_ErrModeSilent);
  photo();
  for ([[maybe_unused]] auto _ : state) {
    Instance instance;
    instance.picture.imagePath = photo().path();
    instance.settings.levels = levels;
    if (!LoadImage(instance, false)) throw std::runtime_error("the picture cannot be loaded");
  }
}

template <typename Conversion>
void Convert(benchmark::State& state, const char* from, const char* to) {
  std::vector<uint8_t> source(size_t{4} * 1920 * 1080, 90), dest(source.size());
  pxcImage sourceImage(1920, 1080, from, source.data(), pxcComponent8U, pxcColorSpaceRGB);
  pxcImage destImage(1920, 1080, to, dest.data(), pxcComponent8U, pxcColorSpaceRGB);
  for ([[maybe_unused]] auto _ : state) Conversion().Execute(sourceImage, destImage);
}

BENCHMARK(BareDecoder)->Name("libjpeg-turbo/to RGB");
BENCHMARK_CAPTURE(Load, rgb, &Photo, 0)->Name("kelto/load/rgb levels");
BENCHMARK_CAPTURE(Load, studio, &Photo, 1)->Name("kelto/load/601 levels");
BENCHMARK_CAPTURE(Load, profile, &PhotoWithProfile, 0)->Name("kelto/load/sRGB profile");
void ToRgb(benchmark::State& state) { Convert<pxcYCbYCr2RGBA>(state, "Y422", "BGRA"); }
BENCHMARK(ToRgb)->Name("kelto/4:2:2 to RGB");
void To422(benchmark::State& state) { Convert<pxcRGBA2YCbYCr>(state, "BGRA", "Y422"); }
BENCHMARK(To422)->Name("kelto/RGB to 4:2:2");

}  // namespace
}  // namespace kelto::bench
