// Photographs made for a test: 24-bit BMP files in a folder that goes with the test.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#else
#include <stdlib.h>

#include <cerrno>
#include <system_error>
#endif

namespace kelto::test {

/// Makes a folder that nobody had before: names of a process that is gone come again.
inline std::filesystem::path MakeFolder() {
  const std::filesystem::path start = std::filesystem::temp_directory_path() / "kelto-test-";
#if defined(_WIN32)
  for (int number = 0;; ++number) {
    const std::string name = std::to_string(getpid()) + "-" + std::to_string(number);
    const std::filesystem::path path = start.string() + name;
    if (std::filesystem::create_directory(path)) return path;
  }
#else
  std::string path = start.string() + "XXXXXX";
  if (mkdtemp(path.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  return path;
#endif
}

/// A new empty folder, removed with what is in it at the end.
class TempFolder {
 public:
  TempFolder() = default;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  const std::filesystem::path path_ = MakeFolder();
};

struct Rgb {
  uint8_t r, g, b;
};

/// Writes a picture of `width` x `height`, `pixel(x, y)` giving each pixel, row 0 on top.
inline void WritePhoto(const std::string& path, int32_t width, int32_t height,
                       const std::function<Rgb(int32_t, int32_t)>& pixel) {
  const uint32_t rowBytes = (3u * width + 3u) & ~3u;
  const uint32_t size = 54u + rowBytes * height;
  std::vector<uint8_t> file(size);
  const auto put = [&](size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) file[at + i] = static_cast<uint8_t>(value >> (8 * i));
  };
  file[0] = 'B';
  file[1] = 'M';
  put(2, size);
  put(10, 54);
  put(14, 40);
  put(18, width);
  put(22, height);
  file[26] = 1;
  file[28] = 24;
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* row = &file[54 + size_t{rowBytes} * (height - 1 - y)];
    for (int32_t x = 0; x < width; ++x) {
      const Rgb c = pixel(x, y);
      uint8_t* to = row + size_t{3} * x;
      to[0] = c.b;
      to[1] = c.g;
      to[2] = c.r;
    }
  }
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<char*>(file.data()), size);
}

}  // namespace kelto::test
