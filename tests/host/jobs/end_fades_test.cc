#include "host/jobs/end_fades.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace kelto::host {
namespace {

constexpr FrameSize kFrameSize{2, 4};
constexpr uint8_t kWhite = 255;

/// Levels of two rows, the first field's and the later one's, of white frames that fade from and to
/// black.
struct Fields {
  int first, later;
};

std::vector<Fields> Faded(int32_t in, int32_t out, FieldOrder fields, int32_t frames) {
  FilmFormat format;
  format.size = kFrameSize;
  format.fields = fields;
  EndFades fades({in, out, Colour{}}, format, PixelLayout::kBGRA, frames);
  const std::vector<uint8_t> white(size_t{4} * kFrameSize.width * kFrameSize.height, kWhite);
  std::vector<Fields> levels;
  for (int32_t number = 0; number < frames; ++number) {
    const FrameView frame = fades.Of({white.data(), 4 * kFrameSize.width, kFrameSize}, number);
    levels.push_back({frame.Row(0)[0], frame.Row(1)[0]});
  }
  return levels;
}

TEST(EndFades, BeginAndEndWithTheColourAlone) {
  const auto levels = Faded(3, 3, FieldOrder::kProgressive, 7);
  const int expected[] = {0, 85, 170, 255, 170, 85, 0};
  for (size_t i = 0; i < levels.size(); ++i) {
    EXPECT_NEAR(levels[i].first, expected[i], 1) << i;
    EXPECT_EQ(levels[i].later, levels[i].first) << i;
  }
}

TEST(EndFades, OfInterlacedFilmsGoOnFromFieldToField) {
  const auto levels = Faded(4, 4, FieldOrder::kTopFirst, 9);
  EXPECT_EQ(levels.front().first, 0);
  EXPECT_EQ(levels.back().first, 0);
  EXPECT_EQ(levels.back().later, 0) << "nothing is darker than the colour";
  int before = 0;
  for (size_t i = 0; i < 4; ++i) {
    for (const int level : {levels[i].first, levels[i].later}) {
      EXPECT_GE(level, before) << "in, frame " << i;
      before = level;
    }
  }
  for (size_t i = 5; i < 9; ++i) {
    for (const int level : {levels[i].first, levels[i].later}) {
      EXPECT_LE(level, before) << "out, frame " << i;
      before = level;
    }
  }
}

TEST(EndFades, OfOneFrameAreTheColour) {
  const auto levels = Faded(1, 1, FieldOrder::kProgressive, 3);
  EXPECT_EQ(levels[0].first, 0);
  EXPECT_EQ(levels[1].first, kWhite);
  EXPECT_EQ(levels[2].first, 0);
}

}  // namespace
}  // namespace kelto::host
