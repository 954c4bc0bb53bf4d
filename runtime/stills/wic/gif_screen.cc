#include "runtime/stills/wic/gif_screen.h"

#include <cstring>

namespace kelto::stills {
namespace {

uint32_t Word(const uint8_t* bytes) { return bytes[0] | uint32_t{bytes[1]} << 8; }

/// Bytes of a palette whose flags say that it is there and how large (GIF89a, sections 18 and 20).
uint64_t PaletteBytes(uint8_t flags) {
  return (flags & 0x80) != 0 ? uint64_t{3} << ((flags & 7) + 1) : 0;
}

bool Skip(StillFile& file, uint64_t bytes) { return file.Seek(file.Position() + bytes); }

/// Past an extension: its label, then blocks that begin with their length, up to an empty one.
bool SkipExtension(StillFile& file) {
  uint8_t length = 0;
  if (!Skip(file, 1)) return false;
  while (file.Read(&length, 1) == 1) {
    if (length == 0) return true;
    if (!Skip(file, length)) return false;
  }
  return false;
}

std::optional<GifScreen> Read(StillFile& file) {
  constexpr uint8_t kExtension = 0x21, kFrame = 0x2c;
  uint8_t head[13], code = 0, place[4];
  if (file.Read(head, sizeof head) != sizeof head || std::memcmp(head, "GIF8", 4) != 0) return {};
  if (!Skip(file, PaletteBytes(head[10]))) return {};
  while (file.Read(&code, 1) == 1) {
    if (code == kExtension && SkipExtension(file)) continue;
    if (code != kFrame || file.Read(place, sizeof place) != sizeof place) break;
    return GifScreen{Word(head + 6), Word(head + 8), Word(place), Word(place + 2)};
  }
  return {};
}

}  // namespace

std::optional<GifScreen> ReadGifScreen(StillFile& file) {
  file.Rewind();
  const auto screen = Read(file);
  file.Rewind();
  return screen;
}

}  // namespace kelto::stills
