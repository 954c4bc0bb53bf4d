// A picture read with all its bits, into rows whose surroundings are watched.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "runtime/stills/deep_reader.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

using WordPixel = std::array<uint16_t, 4>;
using FloatPixel = std::array<float, 4>;

template <typename Pixel>
struct DeepRead {
  DeepInfo info;
  bool transparent = false;
  std::vector<Pixel> pixels;
  const Pixel& at(int x, int y) const { return pixels[size_t{1} * y * info.width + x]; }
};

template <typename Pixel>
DeepRead<Pixel> ReadDeep(const std::string& path) {
  DeepReader reader(path);
  DeepRead<Pixel> read{reader.info(), false, {}};
  EXPECT_EQ(read.info.PixelBytes(), sizeof(Pixel));
  constexpr size_t kPadding = 16;  // bytes behind each row, to be left alone
  constexpr uint8_t kGuard = 0xa5;
  const size_t row = read.info.width * sizeof(Pixel), step = (row + 15) / 16 * 16 + kPadding;
  Bytes rows(step * read.info.height, kGuard);
  read.transparent = reader.Read(rows.data(), static_cast<ptrdiff_t>(step));
  read.pixels.resize(size_t{read.info.width} * read.info.height);
  for (size_t y = 0; y < read.info.height; ++y) {
    std::memcpy(&read.pixels[y * read.info.width], &rows[y * step], row);
    EXPECT_EQ(rows[y * step + row], kGuard) << "a byte beside row " << y << " was written";
  }
  return read;
}

/// Why it cannot be read; empty when it can.
inline std::string ReasonOf(const std::string& path) {
  try {
    DeepReader reader(path);
    std::vector<FloatPixel> pixels(size_t{reader.info().width} * reader.info().height);
    reader.Read(pixels.data(), static_cast<ptrdiff_t>(reader.info().width * sizeof(FloatPixel)));
  } catch (const StillError& error) {
    return error.reason;
  }
  return "";
}

}  // namespace kelto::stills
