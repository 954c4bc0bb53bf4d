// A large photograph is decoded at the codec's own speed: rows go straight into the caller's
// buffer, and nothing is done to them afterwards unless the file asks for it.
#include <algorithm>
#include <ctime>
#include <iostream>
#include <random>

#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

#include <cstdio>
// libjpeg's header needs stdio's before it.
#include <jpeglib.h>

namespace kelto::stills {
namespace {

constexpr int kWidth = 6000, kHeight = 4000;

/// A gradient with noise, of a photograph's detail.
JpegSpec Photograph() {
  JpegSpec spec;
  spec.width = kWidth;
  spec.height = kHeight;
  spec.quality = 90;
  spec.full_chroma = false;
  spec.samples.resize(size_t{3} * kWidth * kHeight);
  std::minstd_rand random(7);
  uint8_t* to = spec.samples.data();
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int noise = static_cast<int>(random() >> 16 & 15);
      *to++ = static_cast<uint8_t>(x * 230 / kWidth + noise);
      *to++ = static_cast<uint8_t>(y * 230 / kHeight + noise);
      *to++ = static_cast<uint8_t>((x + y) / 50 % 200 + noise);
    }
  }
  return spec;
}

/// Processor time of the shortest of a few runs, in milliseconds: other programs do not count.
template <typename Work>
double Shortest(const Work& work) {
  double shortest = 1e9;
  for (int run = 0; run < 5; ++run) {
    const std::clock_t start = std::clock();
    work();
    shortest =
        std::min(shortest, 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
  }
  return shortest;
}

/// The codec on its own, from a file to R, G, B.
void PlainLibjpeg(const std::string& path, Bytes& rgb) {
  jpeg_decompress_struct cinfo = {};
  jpeg_error_mgr errors = {};
  cinfo.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&cinfo);
  std::FILE* file = std::fopen(path.c_str(), "rb");
  jpeg_stdio_src(&cinfo, file);
  jpeg_read_header(&cinfo, TRUE);
  jpeg_start_decompress(&cinfo);
  while (cinfo.output_scanline < cinfo.output_height) {
    JSAMPROW row = &rgb[cinfo.output_scanline * size_t{3} * kWidth];
    jpeg_read_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_decompress(&cinfo);
  jpeg_destroy_decompress(&cinfo);
  std::fclose(file);
}

void ThroughTheImporter(const std::string& path, Bytes& bgra) {
  const Opened opened = OpenStill(path);
  StillRect bounds;
  GraphicsImportGetNaturalBounds(opened.importer, &bounds);
  GWorldPtr world = nullptr;
  QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0, bgra.data(),
                     (bounds.right - bounds.left) * 4);
  GraphicsImportSetGWorld(opened.importer, world, nullptr);
  EXPECT_EQ(GraphicsImportDraw(opened.importer), noErr) << StillImporterLastError();
  DisposeGWorld(world);
  CloseComponent(opened.importer);
}

class Speed : public StillTest {};

TEST_F(Speed, APhotographOf24MegapixelsTakesWhatTheCodecTakes) {
  JpegSpec spec = Photograph();
  const std::string plain = Write("photo.jpg", EncodeJpeg(spec));
  spec.icc = SrgbProfile();
  const std::string srgb = Write("srgb.jpg", EncodeJpeg(spec));
  spec.icc = DisplayP3Profile();
  const std::string wide = Write("wide.jpg", EncodeJpeg(spec));
  Bytes rgb(size_t{3} * kWidth * kHeight), bgra(size_t{4} * kWidth * kHeight);
  const double codec = Shortest([&] { PlainLibjpeg(plain, rgb); });
  const double importer = Shortest([&] { ThroughTheImporter(plain, bgra); });
  const double with_srgb = Shortest([&] { ThroughTheImporter(srgb, bgra); });
  const double with_profile = Shortest([&] { ThroughTheImporter(wide, bgra); });
  std::cout << "24 megapixels: libjpeg alone to RGB " << codec << " ms; importer " << importer
            << " ms (" << importer / codec << " of it), with an sRGB profile " << with_srgb
            << " ms, with a wide profile " << with_profile << " ms\n";
  // Room for a busy machine; a second pass over the pixels would already show.
  EXPECT_LT(importer, codec * 1.5);
  EXPECT_LT(with_srgb, codec * 1.5);
}

}  // namespace
}  // namespace kelto::stills
