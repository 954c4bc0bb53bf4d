#include "host/film/picture_sequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
// jpeglib.h takes FILE and size_t for granted.
#include <cstdio>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/base/error.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

using test::Picture;
using test::Rgb;

Rgb Pixel(int x, int y) { return {uint8_t(10 * x), uint8_t(20 * y), 200}; }

struct Read {
  Picture picture;
  double pixelAspect = 0.0;  ///< width to height
  std::string colours;
};

Read ReadTiff(const std::string& path) {
  Read read;
  TIFF* tiff = TIFFOpen(path.c_str(), "r");
  if (tiff == nullptr) return read;
  uint32_t width = 0, height = 0;
  uint16_t samples = 0, bits = 0, photometric = 0, unit = 0;
  float across = 0, down = 0;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
  TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
  TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
  TIFFGetField(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &across);
  TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &down);
  read.pixelAspect = down / across;
  EXPECT_EQ(unit, RESUNIT_NONE);
  EXPECT_EQ(samples, 3);
  EXPECT_EQ(bits, 8);
  read.colours = photometric == PHOTOMETRIC_RGB ? "rgb" : "other";
  read.picture = {int(width), int(height), std::vector<uint8_t>(size_t{width} * height * 3)};
  for (uint32_t row = 0; row < height; ++row) {
    TIFFReadScanline(tiff, &read.picture.bytes[size_t{row} * width * 3], row, 0);
  }
  TIFFClose(tiff);
  return read;
}

Read ReadJpeg(const std::string& path) {
  Read read;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return read;
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&jpeg);
  jpeg_stdio_src(&jpeg, file);
  jpeg_read_header(&jpeg, TRUE);
  EXPECT_EQ(jpeg.saw_JFIF_marker, TRUE);
  EXPECT_EQ(jpeg.density_unit, 0);
  read.pixelAspect = double(jpeg.Y_density) / jpeg.X_density;
  EXPECT_EQ(jpeg.comp_info[0].h_samp_factor, jpeg.comp_info[1].h_samp_factor) << "subsampled";
  EXPECT_EQ(jpeg.comp_info[0].v_samp_factor, jpeg.comp_info[1].v_samp_factor) << "subsampled";
  jpeg.out_color_space = JCS_RGB;
  jpeg_start_decompress(&jpeg);
  read.picture = {int(jpeg.output_width), int(jpeg.output_height), {}};
  read.picture.bytes.resize(size_t{jpeg.output_width} * jpeg.output_height * 3);
  while (jpeg.output_scanline < jpeg.output_height) {
    JSAMPROW row = &read.picture.bytes[size_t{jpeg.output_scanline} * jpeg.output_width * 3];
    jpeg_read_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_decompress(&jpeg);
  jpeg_destroy_decompress(&jpeg);
  std::fclose(file);
  return read;
}

void WriteOne(std::unique_ptr<FrameSink> film, FrameSize size) {
  film->Write(test::MakeBGRA(size, Pixel).View());
  film->Finish();
}

FilmRequest Shaped(const std::string& path, FrameSize size, SampleAspect aspect) {
  FilmRequest request = test::Request(path, size, 1);
  request.format.sampleAspect = aspect;
  return request;
}

TEST(PictureSequence, HasAPictureAFrameCountedFromZero) {
  const test::TempFolder folder;
  const FrameSize size{5, 3};
  const auto film = OpenPngSequence(test::Request(folder / "f%02d.png", size, 2));
  film->Write(test::MakeBGRA(size, Pixel).View());
  film->Write(test::MakeBGRA(size, [](int, int) { return Rgb{1, 2, 3}; }).View());
  film->Finish();
  const Picture first = test::ReadPng(folder / "f00.png");
  ASSERT_EQ(first.width, 5);
  ASSERT_EQ(first.height, 3);
  EXPECT_EQ(first.bytes, test::MakePicture(5, 3, Pixel).bytes);
  EXPECT_EQ(test::Distance(test::ReadPng(folder / "f01.png").At(4, 2), {1, 2, 3}), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "f02.png"));
}

TEST(PictureSequence, TiffsHoldTheFramesExactly) {
  const test::TempFolder folder;
  const FrameSize size{23, 11};
  WriteOne(OpenTiffSequence(test::Request(folder / "f%d.tiff", size, 1)), size);
  const Read read = ReadTiff(folder / "f0.tiff");
  EXPECT_EQ(read.picture.width, 23);
  EXPECT_EQ(read.picture.bytes, test::MakePicture(23, 11, Pixel).bytes);
  EXPECT_EQ(read.colours, "rgb");
  EXPECT_DOUBLE_EQ(read.pixelAspect, 1.0);
}

TEST(PictureSequence, JpegsHoldTheFramesNearlyAndAllTheirChroma) {
  const test::TempFolder folder;
  const FrameSize size{24, 12};
  WriteOne(OpenJpegSequence(test::Request(folder / "f%d.jpeg", size, 1)), size);
  const Read read = ReadJpeg(folder / "f0.jpeg");
  ASSERT_EQ(read.picture.width, 24);
  ASSERT_EQ(read.picture.height, 12);
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 24; ++x) {
      EXPECT_LE(test::Distance(read.picture.At(x, y), Pixel(x, y)), 8) << x << ", " << y;
    }
  }
  EXPECT_DOUBLE_EQ(read.pixelAspect, 1.0);
}

TEST(PictureSequence, TellsTheShapeOfPixelsThatAreNotSquare) {
  const test::TempFolder folder;
  const FrameSize size{8, 8};
  const auto request = [&](const char* name) { return Shaped(folder / name, size, {16, 15}); };
  WriteOne(OpenTiffSequence(request("a.tiff")), size);
  WriteOne(OpenJpegSequence(request("a.jpeg")), size);
  WriteOne(OpenPngSequence(request("a.png")), size);
  EXPECT_NEAR(ReadTiff(folder / "a.tiff").pixelAspect, 16.0 / 15.0, 1e-6);
  EXPECT_NEAR(ReadJpeg(folder / "a.jpeg").pixelAspect, 16.0 / 15.0, 1e-6);

  std::FILE* file = std::fopen((folder / "a.png").c_str(), "rb");
  ASSERT_NE(file, nullptr);
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  // The library checks the chunk's sum: a wrong one leaves it out.
  png_read_info(png, info);
  EXPECT_NEAR(png_get_pixel_aspect_ratio(png, info), 16.0 / 15.0, 1e-6);
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(file);
  EXPECT_EQ(test::ReadPng(folder / "a.png").bytes, test::MakePicture(8, 8, Pixel).bytes);
}

TEST(PictureSequence, IsTheSameEveryTime) {
  const test::TempFolder folder;
  const FrameSize size{64, 48};
  const auto bytes = [&](const std::string& name, auto open) {
    WriteOne(open(test::Request(folder / name, size, 1)), size);
    std::ifstream file(folder / name, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(file), {}};
  };
  EXPECT_TRUE(bytes("a.tiff", OpenTiffSequence) == bytes("b.tiff", OpenTiffSequence));
  EXPECT_TRUE(bytes("a.jpeg", OpenJpegSequence) == bytes("b.jpeg", OpenJpegSequence));
}

TEST(PictureSequence, LeavesNothingBeforeTheFirstFrame) {
  const test::TempFolder folder;
  { OpenPngSequence(test::Request(folder / "f%02d.png", {5, 3}, 2)); }
  { OpenTiffSequence(test::Request(folder / "f%02d.tiff", {5, 3}, 2)); }
  EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(PictureSequence, TellsOfABadFolderBeforeTheFirstFrame) {
  const test::TempFolder folder;
  EXPECT_THROW(OpenPngSequence(test::Request(folder / "no/f%02d.png", {5, 3}, 2)), Error);
  EXPECT_THROW(OpenJpegSequence(test::Request(folder / "no/f%02d.jpg", {5, 3}, 2)), Error);
}

TEST(PictureSequence, WhatAnEncoderRefusesIsToldWithTheFilesName) {
  const test::TempFolder folder;
  const FrameSize tooWide{70000, 1};
  const auto film = OpenJpegSequence(test::Request(folder / "f%d.jpg", tooWide, 1));
  try {
    film->Write(test::MakeBGRA(tooWide, [](int, int) { return Rgb{1, 2, 3}; }).View());
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(),
                testing::StartsWith(folder / "f0.jpg" + ": cannot be coded as JPEG: "));
  }
}

}  // namespace
}  // namespace kelto::host
