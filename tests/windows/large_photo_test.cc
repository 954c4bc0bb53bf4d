// Photographs that fill a good part of a 32-bit process.
#include <gtest/gtest.h>
#include <process.h>
#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "tests/windows/wic_file.h"

namespace kelto::stills {
namespace {

class LargePhoto : public StillTest {
 protected:
  /// Renders one frame of the whole picture as BGRA by the command.
  std::vector<uint8_t> Render(const std::string& photo, const std::string& filter) {
    const std::string output = Path("frame.bgra");
    EXPECT_EQ(_spawnl(_P_WAIT, KELTO_COMMAND, KELTO_COMMAND, "render", photo.c_str(), "-o",
                      output.c_str(), "--size", "300x200", "--frames", "1", "--filter",
                      filter.c_str(), static_cast<const char*>(nullptr)),
              0);
    std::ifstream file(output, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

/// Red grows to the right, green downwards.
Picture Slopes(int width, int height) {
  Picture picture{width, height, {}};
  picture.pixels.reserve(size_t{1} * width * height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.pixels.push_back(
          Rgb(static_cast<uint8_t>(x * 255 / width), static_cast<uint8_t>(y * 255 / height), 80));
    }
  }
  return picture;
}

/// Expects the frame of a picture whose red grows to the right and green downwards.
void ExpectSlopes(const std::vector<uint8_t>& frame) {
  ASSERT_EQ(frame.size(), size_t{300} * 200 * 4);
  for (int y = 0; y < 200; y += 7) {
    for (int x = 0; x < 300; x += 7) {
      const uint8_t* pixel = &frame[size_t{4} * (300 * y + x)];
      ASSERT_NEAR(pixel[0], 80, 5) << x << " " << y;
      ASSERT_NEAR(pixel[1], (y + 0.5) * 255 / 200, 5) << x << " " << y;
      ASSERT_NEAR(pixel[2], (x + 0.5) * 255 / 300, 5) << x << " " << y;
    }
  }
}

TEST(Command, UsesAllFourGigabytesOfAddresses) {
  std::ifstream file(KELTO_COMMAND, std::ios::binary);
  std::vector<char> head(4096);
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(head.data());
  ASSERT_LT(static_cast<size_t>(dos->e_lfanew), head.size() - sizeof(IMAGE_NT_HEADERS32));
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS32*>(head.data() + dos->e_lfanew);
  EXPECT_NE(nt->FileHeader.Characteristics & IMAGE_FILE_LARGE_ADDRESS_AWARE, 0);
}

TEST_F(LargePhoto, Of24MegapixelsIsRenderedWholeByTheCommand) {
  const std::string photo =
      Write("photo.jpg", EncodeByWic(GUID_ContainerFormatJpeg, Slopes(6000, 4000)));
  for (const char* filter : {"realtime", "ultra"}) {
    SCOPED_TRACE(filter);
    ExpectSlopes(Render(photo, filter));
  }
}

// More than fits into the two gigabytes that a process gets without asking.
TEST_F(LargePhoto, Of192And300MegapixelsAreRenderedWholeByTheCommand) {
  for (const auto& [width, height] : {std::pair(16968, 11312), std::pair(21216, 14144)}) {
    SCOPED_TRACE(width);
    const std::string photo = Path("photo.jpg");
    WriteJpegByWic(photo, width, height, [&](int x, int y) {
      return Rgb(static_cast<uint8_t>(x * 255 / width), static_cast<uint8_t>(y * 255 / height), 80);
    });
    ExpectSlopes(Render(photo, "triangle"));
  }
}

}  // namespace
}  // namespace kelto::stills
