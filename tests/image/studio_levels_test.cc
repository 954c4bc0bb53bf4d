#include "image/studio_levels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

namespace kelto {
namespace {

TEST(StudioLevels, AreCutNotRounded) {
  EXPECT_EQ(studioLevelTable[0], 16);
  EXPECT_EQ(studioLevelTable[1], 17);     // 17.36
  EXPECT_EQ(studioLevelTable[2], 18);     // 18.22
  EXPECT_EQ(studioLevelTable[4], 19);     // 19.94
  EXPECT_EQ(studioLevelTable[128], 126);  // 126.5
  EXPECT_EQ(studioLevelTable[255], 235);  // 235.64
  for (size_t i = 1; i < 256; ++i) EXPECT_GE(studioLevelTable[i], studioLevelTable[i - 1]);
}

/// Full-range pixels of a channel sequence, rows padded.
struct Pixels {
  static constexpr int32_t kWidth = 13, kHeight = 5, kRowBytes = 4 * kWidth + 12;
  static constexpr uint8_t kPadding = 0;  // would become 16

  explicit Pixels(const char* sequence) : bytes(size_t{kRowBytes} * kHeight, kPadding) {
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t i = 0; i < 4 * kWidth; ++i) At(y, i) = Level(y, i);
    }
    std::memcpy(image.channelSeq, sequence, sizeof image.channelSeq);
    image.width = kWidth;
    image.height = kHeight;
    image.widthStep = kRowBytes;
    image.imageData = reinterpret_cast<char*>(bytes.data());
  }
  static uint8_t Level(int32_t y, int32_t i) { return static_cast<uint8_t>(51 * y + 5 * i); }
  uint8_t& At(int32_t y, int32_t i) {
    return bytes[size_t{kRowBytes} * static_cast<size_t>(y) + static_cast<size_t>(i)];
  }

  std::vector<uint8_t> bytes;
  IplImage image = {};
};

TEST(StudioLevels, AreGivenToColoursAndNotToAlphaWhereverItIs) {
  for (const auto& [sequence, alpha] : {std::pair("BGRA", 3), {"ARGB", 0}, {"ABGR", 0}}) {
    Pixels pixels(sequence);
    CompressToStudioRange(pixels.image);
    for (int32_t y = 0; y < Pixels::kHeight; ++y) {
      for (int32_t i = 0; i < Pixels::kRowBytes; ++i) {
        const uint8_t level = Pixels::Level(y, i);
        const uint8_t expected = i >= 4 * Pixels::kWidth ? Pixels::kPadding
                                 : i % 4 == alpha        ? level
                                                         : studioLevelTable[level];
        ASSERT_EQ(pixels.At(y, i), expected) << sequence << " row " << y << " byte " << i;
      }
    }
  }
}

}  // namespace
}  // namespace kelto
