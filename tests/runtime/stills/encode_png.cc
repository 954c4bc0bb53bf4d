#include "tests/runtime/stills/encode_png.h"

#include <zlib.h>

namespace kelto::stills {
namespace {

void OnWrite(png_structp png, png_bytep data, size_t count) {
  Bytes& bytes = *static_cast<Bytes*>(png_get_io_ptr(png));
  bytes.insert(bytes.end(), data, data + count);
}

void Append32(Bytes& to, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<uint8_t>(value >> shift));
}

}  // namespace

Bytes EncodePng(const PngSpec& spec) {
  Bytes bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &bytes, OnWrite, nullptr);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_IHDR(png, info, static_cast<png_uint_32>(spec.width),
               static_cast<png_uint_32>(spec.height), spec.bit_depth, spec.color_type,
               spec.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (spec.chunks) spec.chunks(png, info);
  png_write_info(png, info);
  const size_t row_bytes = png_get_rowbytes(png, info);
  std::vector<png_bytep> rows;
  rows.reserve(static_cast<size_t>(spec.height));
  for (int y = 0; y < spec.height; ++y) {
    rows.push_back(const_cast<png_bytep>(&spec.rows[static_cast<size_t>(y) * row_bytes]));
  }
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return bytes;
}

PngSpec PngOf(const Picture& picture) {
  PngSpec spec;
  spec.width = picture.width;
  spec.height = picture.height;
  for (const Pixel& p : picture.pixels) Append(spec.rows, {p.r, p.g, p.b});
  return spec;
}

Bytes PngChunk(const char* name, const Bytes& content) {
  Bytes checked(name, name + 4);
  Append(checked, content);
  Bytes chunk;
  Append32(chunk, static_cast<uint32_t>(content.size()));
  Append(chunk, checked);
  Append32(chunk,
           static_cast<uint32_t>(crc32(0, checked.data(), static_cast<unsigned>(checked.size()))));
  return chunk;
}

Bytes PngHeaderOnly(uint32_t width, uint32_t height) {
  Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  Bytes header;
  Append32(header, width);
  Append32(header, height);
  Append(header, {8, PNG_COLOR_TYPE_RGB, 0, 0, 0});
  for (const Bytes& chunk :
       {PngChunk("IHDR", header), PngChunk("IDAT", {0x78, 0x9c, 0x03, 0x00})}) {
    Append(bytes, chunk);
  }
  return bytes;
}

}  // namespace kelto::stills
