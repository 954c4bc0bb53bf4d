// PNG test files, made by libpng.
#pragma once

#include <png.h>

#include <functional>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

struct PngSpec {
  int width = 0, height = 0;
  int color_type = PNG_COLOR_TYPE_RGB;
  int bit_depth = 8;
  bool interlaced = false;
  /// Packed rows one after another; words with their high byte first.
  Bytes rows;
  /// Sets further chunks; called before the header is written.
  std::function<void(png_structp, png_infop)> chunks;
};

Bytes EncodePng(const PngSpec& spec);
/// An RGB PNG of a picture.
PngSpec PngOf(const Picture& picture);
/// A PNG of a header and nothing else of use: what a file may claim without holding it.
Bytes PngHeaderOnly(uint32_t width, uint32_t height);
/// Where a file's first chunk after its header begins.
constexpr int kPngAfterHeader = 33;
/// A chunk with its length and checksum.
Bytes PngChunk(const char* name, const Bytes& content);

}  // namespace kelto::stills
