#include "host/film/png_pixel_shape.h"

#include <array>

namespace kelto::host {
namespace {

/// Signature and the IHDR chunk, which is always the first.
constexpr ptrdiff_t kAfterHeader = 8 + 25;
constexpr uint8_t kUnitUnknown = 0;

/// The checksum of ISO 3309, as PNG chunks end in.
uint32_t Checksum(const uint8_t* bytes, size_t size) {
  uint32_t sum = 0xffffffffu;
  for (size_t i = 0; i < size; ++i) {
    sum ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320u : 0);
  }
  return ~sum;
}

void PutBigEndian(uint32_t value, uint8_t* to) {
  for (int i = 0; i < 4; ++i) to[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

}  // namespace

std::vector<uint8_t> WithPixelShape(std::vector<uint8_t> png, SampleAspect aspect) {
  if (aspect == SampleAspect{}) return png;
  std::array<uint8_t, 21> chunk{0, 0, 0, 9, 'p', 'H', 'Y', 's'};
  // Densities: the wider a pixel, the fewer go into a length.
  PutBigEndian(static_cast<uint32_t>(aspect.height), &chunk[8]);
  PutBigEndian(static_cast<uint32_t>(aspect.width), &chunk[12]);
  chunk[16] = kUnitUnknown;
  PutBigEndian(Checksum(&chunk[4], 13), &chunk[17]);
  png.insert(png.begin() + kAfterHeader, chunk.begin(), chunk.end());
  return png;
}

}  // namespace kelto::host
