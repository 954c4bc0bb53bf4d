// Pixels without their alpha, for formats of three channels.
#pragma once

#include <cstdint>

namespace kelto::host {

enum class ChannelOrder { kRgb, kBgr };

/// Copies `count` pixels B, G, R, A to three bytes each.
inline void CopyThreeChannels(const uint8_t* bgra, int32_t count, ChannelOrder order, uint8_t* to) {
  const int first = order == ChannelOrder::kRgb ? 2 : 0;
  for (; count > 0; --count, bgra += 4, to += 3) {
    to[0] = bgra[first];
    to[1] = bgra[1];
    to[2] = bgra[2 - first];
  }
}

}  // namespace kelto::host
