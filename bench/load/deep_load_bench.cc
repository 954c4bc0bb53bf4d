// Pictures of 12 megapixels and 16 bits from file to picture of the deep engine, beside the bare
// decoders on the same files, which leave red, green and blue.
#include <benchmark/benchmark.h>
#include <png.h>
#include <stdlib.h>
#include <tiffio.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "deep/picture.h"
#include "runtime/stills/deep_reader.h"

namespace kelto::bench {
namespace {

constexpr uint32_t kDeepWidth = 4000, kDeepHeight = 3000, kDeepRow = 6 * kDeepWidth;

/// Slopes and fine grain, as scans have.
void FillDeepRow(uint32_t y, std::vector<uint16_t>& row) {
  uint32_t noise = y * 2654435761u + 1;
  for (uint32_t x = 0; x < kDeepWidth; ++x) {
    const double wave = 15000 * std::sin(x * 0.011) * std::cos(y * 0.007);
    for (uint32_t c = 0; c < 3; ++c) {
      noise = noise * 1664525u + 1013904223u;
      row[3 * x + c] = static_cast<uint16_t>(32768 + wave * (1 - 0.3 * c) + (noise >> 24));
    }
  }
}

/// A temporary file that `write` fills, given its path.
class DeepFile {
 public:
  explicit DeepFile(void (*write)(const char* path)) {
    const int descriptor = mkstemp(path_);
    if (descriptor < 0) throw std::runtime_error("no room for a temporary picture");
    close(descriptor);
    write(path_);
  }
  DeepFile(const DeepFile&) = delete;
  DeepFile& operator=(const DeepFile&) = delete;
  ~DeepFile() { unlink(path_); }
  const char* path() const { return path_; }

 private:
  char path_[28] = "/var/tmp/kelto-bench-XXXXXX";
};

void WriteDeepPng(const char* path) {
  FILE* file = fopen(path, "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_compression_level(png, 1);
  png_set_IHDR(png, info, kDeepWidth, kDeepHeight, 16, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_set_swap(png);
  std::vector<uint16_t> row(size_t{3} * kDeepWidth);
  for (uint32_t y = 0; y < kDeepHeight; ++y) {
    FillDeepRow(y, row);
    png_write_row(png, static_cast<png_const_bytep>(static_cast<const void*>(row.data())));
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  fclose(file);
}

void WriteDeepTiff(const char* path, uint16_t compression) {
  TIFF* tiff = TIFFOpen(path, "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kDeepWidth);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kDeepHeight);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
  if (compression != COMPRESSION_NONE) TIFFSetField(tiff, TIFFTAG_PREDICTOR, 2);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
  std::vector<uint16_t> row(size_t{3} * kDeepWidth);
  for (uint32_t y = 0; y < kDeepHeight; ++y) {
    FillDeepRow(y, row);
    TIFFWriteScanline(tiff, row.data(), y, 0);
  }
  TIFFClose(tiff);
}

const DeepFile& DeepPng() {
  static const DeepFile file(WriteDeepPng);
  return file;
}

const DeepFile& PlainTiff() {
  static const DeepFile file([](const char* path) { WriteDeepTiff(path, COMPRESSION_NONE); });
  return file;
}

const DeepFile& PackedTiff() {
  static const DeepFile file(
      [](const char* path) { WriteDeepTiff(path, COMPRESSION_ADOBE_DEFLATE); });
  return file;
}

void BarePng(benchmark::State& state) {
  DeepPng();
  for ([[maybe_unused]] auto _ : state) {
    std::vector<uint8_t> pixels(size_t{kDeepRow} * kDeepHeight);
    FILE* file = fopen(DeepPng().path(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    png_set_swap(png);
    png_read_update_info(png, info);
    for (uint32_t y = 0; y < kDeepHeight; ++y) {
      png_read_row(png, &pixels[size_t{kDeepRow} * y], nullptr);
    }
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    fclose(file);
    benchmark::DoNotOptimize(pixels.data());
  }
}

void BareTiff(benchmark::State& state, const DeepFile& (*file)()) {
  file();
  for ([[maybe_unused]] auto _ : state) {
    std::vector<uint8_t> pixels(size_t{kDeepRow} * kDeepHeight);
    TIFF* tiff = TIFFOpen(file().path(), "r");
    for (uint32_t y = 0; y < kDeepHeight; ++y) {
      TIFFReadScanline(tiff, &pixels[size_t{kDeepRow} * y], y, 0);
    }
    TIFFClose(tiff);
    benchmark::DoNotOptimize(pixels.data());
  }
}

void ReadDeepFile(benchmark::State& state, const DeepFile& (*file)()) {
  file();
  for ([[maybe_unused]] auto _ : state) {
    stills::DeepReader reader(file().path());
    DeepPicture picture(kDeepWidth, kDeepHeight, DeepSample::kUnsigned16, true);
    const DeepTarget rows = picture.view();
    if (reader.Read(rows.pixels, rows.rowBytes)) throw std::runtime_error("it became transparent");
  }
}

BENCHMARK(BarePng)->Name("libpng/16 bits to RGB");
BENCHMARK_CAPTURE(ReadDeepFile, png, &DeepPng)->Name("kelto/deep load/png");
BENCHMARK_CAPTURE(BareTiff, plain, &PlainTiff)->Name("libtiff/16 bits to RGB");
BENCHMARK_CAPTURE(ReadDeepFile, plain, &PlainTiff)->Name("kelto/deep load/tiff");
BENCHMARK_CAPTURE(BareTiff, packed, &PackedTiff)->Name("libtiff/deflate, 16 bits to RGB");
BENCHMARK_CAPTURE(ReadDeepFile, packed, &PackedTiff)->Name("kelto/deep load/tiff deflate");

}  // namespace
}  // namespace kelto::bench
