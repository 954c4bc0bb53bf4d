// What every test of the still importer uses: a folder of its own, and a picture loaded through
// the importer's functions into a buffer whose surroundings are watched.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "platform/still_importer.h"
#include "tests/support/photo.h"

namespace kelto::stills {

using Bytes = std::vector<uint8_t>;
void Append(Bytes& to, const Bytes& more);

struct Pixel {
  uint8_t b, g, r, a;
  bool operator==(const Pixel&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Pixel& p);
/// An opaque pixel by its red, green and blue.
constexpr Pixel Rgb(uint8_t r, uint8_t g, uint8_t b) { return {b, g, r, 255}; }

/// Whether no component of two pixels differs by more than `levels`.
testing::AssertionResult IsNear(const Pixel& a, const Pixel& b, int levels);

struct Picture {
  int width = 0, height = 0;
  std::vector<Pixel> pixels;
  Pixel at(int x, int y) const { return pixels[size_t{1} * y * width + x]; }
};
/// The largest difference of any component; 256 when the sizes differ.
int LargestDifference(const Picture& a, const Picture& b);

struct Loaded {
  OSErr error = noErr;
  std::string text;  ///< of the failed operation
  Picture picture;
};

/// Opens, measures and draws. Rows are padded and the buffer has guards before and behind it; a
/// byte written outside the picture fails the test. Pictures above `most_pixels` are opened only.
Loaded LoadStill(const std::string& path, int64_t most_pixels = INT64_MAX);

/// Opens only.
struct Opened {
  OSErr error;
  std::string text;
  GraphicsImportComponent importer;
};
Opened OpenStill(const std::string& path);

class StillTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return folder_ / name; }
  std::string Write(const std::string& name, const Bytes& bytes) const;
  Loaded Load(const Bytes& bytes, const std::string& name = "picture") const {
    return LoadStill(Write(name, bytes));
  }

 private:
  test::TempFolder folder_;
};

/// A smooth picture in which every pixel of up to 256x256 has its own colour.
Pixel Gradient(int x, int y);
Picture GradientPicture(int width, int height);

}  // namespace kelto::stills
