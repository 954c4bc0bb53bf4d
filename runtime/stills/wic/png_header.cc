#include "runtime/stills/wic/png_header.h"

#include <cstring>

namespace kelto::stills {

std::optional<PngHeader> ReadPngHeader(StillFile& file) {
  // The signature, then the first chunk's length and name (PNG, third edition, 5.2 and 11.2.1).
  constexpr uint8_t kBeginning[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n',
                                    0,    0,   0,   13,  'I',  'H',  'D',  'R'};
  constexpr uint8_t kColourUsed = 2;
  uint8_t head[26];
  file.Rewind();
  const size_t length = file.Read(head, sizeof head);
  file.Rewind();
  if (length != sizeof head || std::memcmp(head, kBeginning, sizeof kBeginning) != 0) return {};
  const auto number = [&](size_t at) {
    uint32_t value = 0;
    for (size_t i = at; i < at + 4; ++i) value = value << 8 | head[i];
    return value;
  };
  return PngHeader{number(16), number(20), (head[25] & kColourUsed) == 0};
}

}  // namespace kelto::stills
