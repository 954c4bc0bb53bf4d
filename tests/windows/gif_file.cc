#include "tests/windows/gif_file.h"

#include <algorithm>

namespace kelto::stills {
namespace {

Bytes Word(int value) { return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)}; }

/// Codes of three bits, low bits first, in blocks that begin with their length. A clear code in
/// front of every pixel keeps codes at three bits.
Bytes Lzw(int pixels, int index) {
  constexpr int kClear = 4, kEnd = 5;
  Bytes codes;
  int filled = 0, bits = 0;
  const auto put = [&](int code) {
    bits |= code << filled;
    for (filled += 3; filled >= 8; filled -= 8, bits >>= 8) {
      codes.push_back(static_cast<uint8_t>(bits));
    }
  };
  for (int i = 0; i < pixels; ++i) {
    put(kClear);
    put(index);
  }
  put(kEnd);
  codes.push_back(static_cast<uint8_t>(bits));

  Bytes blocks = {2};  // bits of a pixel
  for (size_t at = 0; at < codes.size(); at += 255) {
    const size_t count = std::min<size_t>(255, codes.size() - at);
    blocks.push_back(static_cast<uint8_t>(count));
    blocks.insert(blocks.end(), codes.begin() + static_cast<ptrdiff_t>(at),
                  codes.begin() + static_cast<ptrdiff_t>(at + count));
  }
  blocks.push_back(0);
  return blocks;
}

}  // namespace

Bytes EncodeGif(int width, int height, const GifFrame& frame, int transparent) {
  Bytes file = {'G', 'I', 'F', '8', '9', 'a'};
  Append(file, Word(width));
  Append(file, Word(height));
  Append(file, {0x81, 0, 0, /*palette:*/ 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255});
  Append(file, {0x21, 0xfe, 2, 'h', 'i', 0});
  if (transparent >= 0) {
    Append(file, {0x21, 0xf9, 4, 1, 0, 0, static_cast<uint8_t>(transparent), 0});
  }
  file.push_back(0x2c);
  for (const int value : {frame.left, frame.top, frame.width, frame.height}) {
    Append(file, Word(value));
  }
  file.push_back(0);
  Append(file, Lzw(frame.width * frame.height, frame.index));
  file.push_back(0x3b);
  return file;
}

}  // namespace kelto::stills
