#include "host/film/deep_frame.h"

#include <algorithm>

#include "deep/dither.h"

namespace kelto::host {

void UnpremultiplyRow(const uint16_t* from, int32_t width, uint16_t* to) {
  constexpr uint32_t kFull = 65535;
  for (int32_t x = 0; x < width; ++x, from += 4, to += 4) {
    const uint32_t a = from[3];
    for (int c = 0; c < 3; ++c) {
      to[c] = a == kFull ? from[c]
              : a == 0
                  ? uint16_t{0}
                  : static_cast<uint16_t>(std::min<uint32_t>(kFull, (from[c] * kFull + a / 2) / a));
    }
    to[3] = from[3];
  }
}

std::vector<uint16_t> StraightWords(const FrameView& frame) {
  const size_t row = size_t{4} * frame.size.width;
  std::vector<uint16_t> words(row * frame.size.height);
  for (int32_t y = 0; y < frame.size.height; ++y) {
    const void* from = frame.Row(y);
    UnpremultiplyRow(static_cast<const uint16_t*>(from), frame.size.width, &words[row * y]);
  }
  return words;
}

std::vector<uint8_t> StraightBytes(const FrameView& frame) {
  const std::vector<uint16_t> words = StraightWords(frame);
  std::vector<uint8_t> bytes(words.size());
  const ptrdiff_t row = ptrdiff_t{4} * frame.size.width;
  const DeepSource straight{words.data(), frame.size.width,        frame.size.height,
                            2 * row,      DeepSample::kUnsigned16, true};
  DitherTo8Bits(straight, bytes.data(), row);
  return bytes;
}

}  // namespace kelto::host
