// The files that a random host has: photographs, damaged ones, none, and folders.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz/byte_source.h"
#include "tests/support/photo.h"

namespace kelto::fuzz {

/// The same files for every input of a process; what an input changed, Restore puts back.
class HostPhotos {
 public:
  static constexpr int32_t kCount = 12;
  static constexpr int32_t kLarge = 9;  ///< the first of the large ones

  static bool IsLarge(int32_t index) { return index % kCount >= kLarge; }

  HostPhotos() {
    if (Originals().empty()) Make();
  }

  /// Puts back what Change took.
  void Restore() {
    if (!Changed()) return;
    for (int32_t i = 0; i < kLarge; ++i) Write(i, Originals()[static_cast<size_t>(i)]);
    Changed() = false;
  }

  std::string Path(int32_t index) const {
    const int32_t i = index % kCount;
    // One path is a folder's, one no file's.
    if (i == 7) return Folder() / "folder";
    if (i == 8) return Folder() / "none.bmp";
    if (i >= kLarge)
      return "/proc/self/fd/" + std::to_string(LargeFiles()[static_cast<size_t>(i - kLarge)]);
    return Folder() / ("folder/" + std::to_string(i) + ".bmp");
  }

  /// Truncates, replaces, damages or deletes a small photograph.
  void Change(int32_t index, uint8_t how) {
    const int32_t i = index % 7;
    Changed() = true;
    std::vector<char> bytes = Originals()[static_cast<size_t>(i)];
    switch (how % 4) {
      case 0:
        bytes.resize(bytes.size() * how / 256);
        return Write(i, bytes);
      case 1:
        return Write(i, Originals()[static_cast<size_t>((i + 1 + how / 4) % 7)]);
      case 2:
        bytes[how % bytes.size()] = static_cast<char>(how ^ 0x5a);
        return Write(i, bytes);
      default:
        std::filesystem::remove(Path(i));
    }
  }

 private:
  static const test::TempFolder& Folder() {
    static const test::TempFolder folder;
    return folder;
  }
  static std::vector<std::vector<char>>& Originals() {
    static std::vector<std::vector<char>> originals;
    return originals;
  }
  /// In memory, so that a process that crashes leaves nothing large behind.
  static std::vector<int>& LargeFiles() {
    static std::vector<int> files;
    return files;
  }
  static bool& Changed() {
    static bool changed = false;
    return changed;
  }

  void Write(int32_t index, const std::vector<char>& bytes) const {
    // One path names a folder, one nothing.
    if (index == 7 || index == 8) return;
    std::ofstream(Path(index), std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }

  /// A grey picture of one byte a pixel: quick to read, large in memory.
  static std::vector<char> Grey(int32_t width, int32_t height) {
    const uint32_t rowBytes = (static_cast<uint32_t>(width) + 3u) & ~3u;
    std::vector<char> file(54 + 1024 + size_t{rowBytes} * static_cast<size_t>(height));
    const auto put = [&](size_t at, uint32_t value) {
      for (size_t i = 0; i < 4; ++i) file[at + i] = static_cast<char>(value >> (8 * i));
    };
    file[0] = 'B';
    file[1] = 'M';
    put(10, 54 + 1024);
    put(14, 40);
    put(18, static_cast<uint32_t>(width));
    put(22, static_cast<uint32_t>(height));
    file[26] = 1;
    file[28] = 8;
    for (uint32_t i = 0; i < 256; ++i) put(54 + 4 * size_t{i}, i * 0x010101u);
    for (size_t i = 54 + 1024; i < file.size(); ++i) file[i] = static_cast<char>(i * 7);
    return file;
  }

  void Make() const {
    std::filesystem::create_directories(Folder() / "folder");
    constexpr int32_t kSizes[kCount][2] = {{1, 1},   {17, 9},      {64, 48},     {33, 120},
                                           {200, 3}, {69, 49},     {70, 50},     {0, 0},
                                           {0, 0},   {2300, 1500}, {4600, 3000}, {5700, 5600}};
    for (int32_t i = 0; i < kLarge; ++i) {
      Originals().push_back(Grey(kSizes[i][0], kSizes[i][1]));
      Write(i, Originals().back());
    }
    for (int32_t i = kLarge; i < kCount; ++i) {
      const std::vector<char> bytes = Grey(kSizes[i][0], kSizes[i][1]);
      LargeFiles().push_back(::memfd_create("photo", MFD_CLOEXEC));
      const ssize_t written = ::write(LargeFiles().back(), bytes.data(), bytes.size());
      Require(written == static_cast<ssize_t>(bytes.size()), "there is memory for photographs");
    }
  }
};

}  // namespace kelto::fuzz
