#include "tests/runtime/stills/exif_block.h"

namespace kelto::stills {

Bytes ExifBlock(uint16_t orientation, bool big_endian, bool headless) {
  Bytes block;
  if (!headless) block = {'E', 'x', 'i', 'f', 0, 0};
  const auto number = [&](uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
      block.push_back(static_cast<uint8_t>(value >> 8 * (big_endian ? bytes - 1 - i : i)));
    }
  };
  Append(block, Bytes(2, big_endian ? 'M' : 'I'));
  number(42, 2);
  number(8, 4);  // where the directory begins
  number(1, 2);  // one entry: tag, type (16-bit), count, value, padding
  number(0x0112, 2);
  number(3, 2);
  number(1, 4);
  number(orientation, 2);
  number(0, 2);
  number(0, 4);  // no further directory
  return block;
}

Picture StoredFor(const Picture& upright, int orientation) {
  // EXIF 2.32, 4.6.4 A: what row 0 and column 0 of the stored picture are to the eye.
  const bool turned = orientation >= 5;
  const int w = upright.width, h = upright.height;
  Picture stored = {turned ? h : w, turned ? w : h, {}};
  for (int y = 0; y < stored.height; ++y) {
    for (int x = 0; x < stored.width; ++x) {
      switch (orientation) {
        case 2:  // row 0 top, column 0 right
          stored.pixels.push_back(upright.at(w - 1 - x, y));
          break;
        case 3:  // bottom, right
          stored.pixels.push_back(upright.at(w - 1 - x, h - 1 - y));
          break;
        case 4:  // bottom, left
          stored.pixels.push_back(upright.at(x, h - 1 - y));
          break;
        case 5:  // left, top
          stored.pixels.push_back(upright.at(y, x));
          break;
        case 6:  // right, top
          stored.pixels.push_back(upright.at(w - 1 - y, x));
          break;
        case 7:  // right, bottom
          stored.pixels.push_back(upright.at(w - 1 - y, h - 1 - x));
          break;
        case 8:  // left, bottom
          stored.pixels.push_back(upright.at(y, h - 1 - x));
          break;
        default:
          stored.pixels.push_back(upright.at(x, y));
      }
    }
  }
  return stored;
}

}  // namespace kelto::stills
