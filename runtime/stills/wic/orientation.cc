#include "runtime/stills/wic/orientation.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "runtime/stills/exif.h"
#include "runtime/stills/jpeg_metadata.h"
#include "runtime/stills/limits.h"

namespace kelto::stills {
namespace {

constexpr uint8_t kExifHeader[] = {'E', 'x', 'i', 'f', 0, 0};
constexpr uint8_t kPngSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr uint32_t kOrientationTag = 274, kShort = 3, kEntryBytes = 12;

/// Copies bytes at an offset; false when not all of them are there.
using ReadAt = std::function<bool(uint64_t offset, uint8_t* to, size_t count)>;

uint32_t Number(const uint8_t* bytes, int count, bool big_endian) {
  uint32_t number = 0;
  for (int i = 0; i < count; ++i) number = number << 8 | bytes[big_endian ? i : count - 1 - i];
  return number;
}

/// The orientation field of a TIFF structure's first directory (TIFF 6.0, section 2), which is also
/// what EXIF is made of.
int OrientationOfTiff(const ReadAt& read) {
  uint8_t header[8], count[2], entry[kEntryBytes];
  if (!read(0, header, sizeof header)) return 1;
  const bool big_endian = header[0] == 'M';
  const auto number = [&](const uint8_t* bytes, int n) { return Number(bytes, n, big_endian); };
  if (header[0] != header[1] || (header[0] != 'M' && header[0] != 'I') ||
      number(header + 2, 2) != 42)
    return 1;
  uint64_t at = number(header + 4, 4);
  if (!read(at, count, sizeof count)) return 1;
  at += sizeof count;
  for (uint32_t left = number(count, 2); left > 0; --left, at += kEntryBytes) {
    if (!read(at, entry, sizeof entry)) return 1;
    if (number(entry, 2) != kOrientationTag) continue;
    const bool one_short = number(entry + 2, 2) == kShort && number(entry + 4, 4) >= 1;
    return one_short ? ValidOrientation(static_cast<int>(number(entry + 8, 2))) : 1;
  }
  return 1;
}

/// The block of the "eXIf" chunk (PNG, third edition, 11.3.4.5) when one stands before the pixels.
std::vector<uint8_t> ExifOfPng(StillFile& file) {
  if (!file.Seek(sizeof kPngSignature)) return {};
  uint8_t head[8];
  while (file.Read(head, sizeof head) == sizeof head) {
    const uint32_t length = Number(head, 4, true);
    if (std::memcmp(head + 4, "IDAT", 4) == 0) break;
    if (std::memcmp(head + 4, "eXIf", 4) == 0) {
      std::vector<uint8_t> block(std::min(length, kMaxExifBytes));
      block.resize(file.Read(block.data(), block.size()));
      return block;
    }
    if (!file.Seek(file.Position() + length + 4)) break;  // the checksum, too
  }
  return {};
}

}  // namespace

int ExifOrientation(std::span<const uint8_t> exif) {
  if (exif.size() > sizeof kExifHeader &&
      std::equal(std::begin(kExifHeader), std::end(kExifHeader), exif.begin())) {
    exif = exif.subspan(sizeof kExifHeader);
  }
  return OrientationOfTiff([exif](uint64_t offset, uint8_t* to, size_t count) {
    if (offset > exif.size() || exif.size() - offset < count) return false;
    std::memcpy(to, exif.data() + offset, count);
    return true;
  });
}

int OrientationOf(StillFile& file) {
  uint8_t head[8] = {};
  file.Rewind();
  file.Read(head, sizeof head);
  int orientation = 1;
  if (head[0] == 0xff && head[1] == 0xd8) {
    orientation = ExifOrientation(ReadJpegMetadata(file).exif);
  } else if (std::memcmp(head, kPngSignature, sizeof head) == 0) {
    orientation = ExifOrientation(ExifOfPng(file));
  } else {
    orientation = OrientationOfTiff([&file](uint64_t offset, uint8_t* to, size_t count) {
      return file.Seek(offset) && file.Read(to, count) == count;
    });
  }
  file.Rewind();
  return orientation;
}

}  // namespace kelto::stills
