#include "tests/host/support/pictures.h"

#include <gtest/gtest.h>
// jpeglib.h takes FILE and size_t for granted.
#include <cstdio>

#include <jpeglib.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace kelto::test {

Picture MakePicture(int width, int height, const PixelFunction& pixel) {
  Picture picture{width, height, {}};
  picture.bytes.reserve(size_t(width) * height * 3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Rgb colour = pixel(x, y);
      picture.bytes.insert(picture.bytes.end(), {colour.r, colour.g, colour.b});
    }
  }
  return picture;
}

void WritePng(const std::string& path, const Picture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  ASSERT_NE(png_image_write_to_file(&image, path.c_str(), 0, picture.bytes.data(), 0, nullptr), 0)
      << image.message;
}

void WriteJpeg(const std::string& path, const Picture& picture) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  ASSERT_NE(file, nullptr);
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  jpeg_stdio_dest(&jpeg, file);
  jpeg.image_width = static_cast<JDIMENSION>(picture.width);
  jpeg.image_height = static_cast<JDIMENSION>(picture.height);
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 95, TRUE);
  jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
  jpeg_start_compress(&jpeg, TRUE);
  while (jpeg.next_scanline < jpeg.image_height) {
    const uint8_t* start = &picture.bytes[size_t{jpeg.next_scanline} * picture.width * 3];
    JSAMPROW row = const_cast<JSAMPROW>(start);
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  std::fclose(file);
}

Picture ReadPng(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
    ADD_FAILURE() << path << ": " << image.message;
    return {};
  }
  EXPECT_EQ(image.format, unsigned{PNG_FORMAT_RGB}) << path;
  image.format = PNG_FORMAT_RGB;
  Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  picture.bytes.resize(PNG_IMAGE_SIZE(image));
  EXPECT_NE(png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr), 0) << path;
  return picture;
}

int Distance(Rgb a, Rgb b) {
  return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

std::string ToString(Rgb colour) {
  std::ostringstream text;
  text << "(" << int{colour.r} << ", " << int{colour.g} << ", " << int{colour.b} << ")";
  return text.str();
}

std::vector<Rgb> BarColours() {
  std::vector<Rgb> bars;
  for (const uint8_t level : {uint8_t{191}, uint8_t{255}}) {
    const auto channel = [&](bool on) { return on ? level : uint8_t{0}; };
    for (int bits = 7; bits >= 0; --bits) {
      bars.push_back(
          {channel((bits & 2) != 0), channel((bits & 4) != 0), channel((bits & 1) != 0)});
    }
  }
  return bars;
}

}  // namespace kelto::test
