#include "runtime/stills/jpeg_metadata.h"

#include <array>
#include <cstring>

namespace kelto::stills {
namespace {

constexpr uint8_t kEndOfImage = 0xd9, kStartOfScan = 0xda, kApp1 = 0xe1, kApp2 = 0xe2;
constexpr char kExifName[] = "Exif\0";              // and a second zero
constexpr char kIccName[] = "ICC_PROFILE";          // with its zero
constexpr size_t kIccHeader = sizeof kIccName + 2;  // number of the part, count of parts

int NextByte(StillFile& file) {
  uint8_t byte;
  return file.Read(&byte, 1) == 1 ? byte : -1;
}

/// The code of the next marker, or -1.
int NextMarker(StillFile& file) {
  int byte = NextByte(file);
  while (byte >= 0 && byte != 0xff) byte = NextByte(file);
  while (byte == 0xff) byte = NextByte(file);
  return byte;
}

bool StandsAlone(int marker) { return marker <= 0x01 || (marker >= 0xd0 && marker <= 0xd8); }

/// Parts of a profile by their number, and how many there ought to be (ICC.1, annex B.4).
struct IccParts {
  std::array<std::vector<uint8_t>, 256> parts;
  unsigned count = 0;
  bool seen = false;

  void Add(const std::vector<uint8_t>& segment) {
    seen = true;
    const unsigned number = segment[sizeof kIccName], of = segment[sizeof kIccName + 1];
    if (number == 0 || number > of || (count != 0 && of != count) || !parts[number].empty()) return;
    count = of;
    parts[number].assign(segment.begin() + kIccHeader, segment.end());
  }

  std::vector<uint8_t> Join() const {
    std::vector<uint8_t> whole;
    for (unsigned i = 1; i <= count; ++i) {
      if (parts[i].empty()) return {};
      whole.insert(whole.end(), parts[i].begin(), parts[i].end());
    }
    return whole;
  }
};

}  // namespace

JpegMetadata ReadJpegMetadata(StillFile& file) {
  JpegMetadata metadata;
  IccParts icc;
  file.Rewind();
  for (;;) {
    const int marker = NextMarker(file);
    if (marker < 0 || marker == kStartOfScan || marker == kEndOfImage) break;
    if (StandsAlone(marker)) continue;
    uint8_t length_bytes[2];
    if (file.Read(length_bytes, 2) != 2) break;
    const unsigned length = length_bytes[0] * 256u + length_bytes[1];
    if (length < 2) break;
    if (marker != kApp1 && marker != kApp2) {
      if (!file.Seek(file.Position() + length - 2)) break;
      continue;
    }
    std::vector<uint8_t> segment(length - 2);
    if (file.Read(segment.data(), segment.size()) != segment.size()) break;
    if (marker == kApp1 && metadata.exif.empty() && segment.size() > sizeof kExifName &&
        std::memcmp(segment.data(), kExifName, sizeof kExifName) == 0) {
      metadata.exif = std::move(segment);
    } else if (marker == kApp2 && segment.size() > kIccHeader &&
               std::memcmp(segment.data(), kIccName, sizeof kIccName) == 0) {
      icc.Add(segment);
    }
  }
  metadata.icc = icc.Join();
  metadata.icc_lost = icc.seen && metadata.icc.empty();
  file.Rewind();
  return metadata;
}

}  // namespace kelto::stills
