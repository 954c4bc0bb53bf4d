// The compression of full-range pictures to studio range.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/ipl.h"

namespace kelto {

/// Full range to studio range: i · 0.859375 + 16.5, cut to an integer, so 0 to 16 and 255 to 235.
constexpr std::array<uint8_t, 256> MakeStudioLevelTable() {
  std::array<uint8_t, 256> table{};
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = static_cast<uint8_t>(static_cast<double>(i) * 0.859375 + 16.5);
  }
  return table;
}

inline constexpr std::array<uint8_t, 256> studioLevelTable = MakeStudioLevelTable();

/// Passes the three colour bytes of every four-byte pixel of `image` through studioLevelTable, in
/// place. The fourth, alpha, stays: a pixel's first byte when the image's channel sequence begins
/// with 'A', else its last.
void CompressToStudioRange(const IplImage& image);

}  // namespace kelto
