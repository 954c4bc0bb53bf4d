// Pictures for tests: written by the codec libraries, read back by them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/photo.h"

namespace kelto::test {

/// An 8-bit RGB picture.
struct Picture {
  int width = 0, height = 0;
  std::vector<uint8_t> bytes;
  Rgb At(int x, int y) const {
    const uint8_t* pixel = &bytes[(size_t(y) * width + x) * 3];
    return {pixel[0], pixel[1], pixel[2]};
  }
};

using PixelFunction = std::function<Rgb(int x, int y)>;

Picture MakePicture(int width, int height, const PixelFunction& pixel);
void WritePng(const std::string& path, const Picture& picture);
/// Without chroma subsampling, at quality 95.
void WriteJpeg(const std::string& path, const Picture& picture);
/// Fails the test and returns an empty picture when the file cannot be read.
Picture ReadPng(const std::string& path);

/// The greatest difference of two colours in any channel.
int Distance(Rgb a, Rgb b);
std::string ToString(Rgb colour);

/// White, yellow, cyan, green, magenta, red, blue, black at 75 % and full levels.
std::vector<Rgb> BarColours();

}  // namespace kelto::test
