#include "host/jobs/cross_fade.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kelto::host {
namespace {

constexpr FrameSize kSize{4, 4};

/// A frame of one level, whose rows have padding between them.
struct FlatFrame {
  explicit FlatFrame(uint8_t level) : bytes(size_t{12} * kSize.height, level) {}
  FrameView View() const { return {bytes.data(), 12, kSize}; }
  std::vector<uint8_t> bytes;
};

FilmFormat FormatOf(FieldOrder fields) {
  FilmFormat format;
  format.size = kSize;
  format.fields = fields;
  return format;
}

TEST(CrossFade, GoesInEvenStepsThatNeitherStandStill) {
  CrossFade fade(FormatOf(FieldOrder::kProgressive), PixelLayout::kYCbYCr);
  const FlatFrame from(40), to(200);
  for (int32_t step = 0; step < 3; ++step) {
    const FrameView frame = fade.Blend(from.View(), to.View(), step, 3);
    for (int32_t row = 0; row < kSize.height; ++row) {
      for (int x = 0; x < 8; ++x) EXPECT_EQ(frame.Row(row)[x], 40 + 40 * (step + 1));
    }
  }
}

TEST(CrossFade, IsNeverAWholeLevelFromTheStraightLine) {
  CrossFade fade(FormatOf(FieldOrder::kProgressive), PixelLayout::kYCbYCr);
  const FlatFrame from(0), to(255);
  for (int32_t step = 0; step < 25; ++step) {
    const int level = fade.Blend(from.View(), to.View(), step, 25).Row(0)[0];
    EXPECT_LT(std::abs(level - 255.0 * (step + 1) / 26), 1.0) << "step " << step;
  }
}

TEST(CrossFade, OfEqualFramesIsTheFrame) {
  CrossFade fade(FormatOf(FieldOrder::kTopFirst), PixelLayout::kYCbYCr);
  for (const int level : {0, 1, 16, 128, 254, 255}) {
    const FlatFrame frame(static_cast<uint8_t>(level));
    for (int32_t step = 0; step < 25; ++step) {
      EXPECT_EQ(fade.Blend(frame.View(), frame.View(), step, 25).Row(1)[0], level);
    }
  }
}

TEST(CrossFade, OfDeepFramesMovesOnInEachOfManySteps) {
  constexpr int32_t kSteps = 1000;
  CrossFade fade(FormatOf(FieldOrder::kProgressive), PixelLayout::kRgba16);
  const std::vector<uint16_t> black(size_t{4} * kSize.width), white(black.size(), 65535);
  const auto view = [](const std::vector<uint16_t>& row) {
    return FrameView{reinterpret_cast<const uint8_t*>(row.data()), 0, kSize};
  };
  int last = 0;
  for (int32_t step = 0; step < kSteps; ++step) {
    const void* const row = fade.Blend(view(black), view(white), step, kSteps).Row(0);
    const int level = *static_cast<const uint16_t*>(row);
    EXPECT_NEAR(level, 65535.0 * (step + 1) / (kSteps + 1), 1.0) << step;
    ASSERT_GT(level, last) << step;
    last = level;
  }
}

TEST(CrossFade, LetsTheLaterFieldBeHalfAStepFurther) {
  const FlatFrame from(0), to(240);
  for (const FieldOrder order : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
    CrossFade fade(FormatOf(order), PixelLayout::kYCbYCr);
    const FrameView frame = fade.Blend(from.View(), to.View(), 0, 2);
    const int first = order == FieldOrder::kTopFirst ? 0 : 1;
    EXPECT_NEAR(frame.Row(first)[0], 80, 1);
    EXPECT_NEAR(frame.Row(1 - first)[0], 120, 1);
  }
}

TEST(CrossFade, DipsIntoTheColourAndOutOfItNoQuickerThanAFadeOfHalfTheLength) {
  FilmFormat format = FormatOf(FieldOrder::kProgressive);
  CrossFade dip(format, PixelLayout::kBGRA, FadeKind::kDip, {0, 0, 0});
  std::vector<uint8_t> light(size_t{4} * 4 * 4, 240), dark(size_t{4} * 4 * 4, 120);
  const FrameView from{light.data(), 16, kSize}, to{dark.data(), 16, kSize};
  std::vector<int> levels;
  for (int32_t step = 0; step < 7; ++step) levels.push_back(dip.Blend(from, to, step, 7).Row(0)[0]);
  EXPECT_EQ(levels, (std::vector<int>{180, 120, 60, 0, 30, 60, 90}));
}

TEST(CrossFade, DipsInFieldsToo) {
  CrossFade dip(FormatOf(FieldOrder::kTopFirst), PixelLayout::kBGRA, FadeKind::kDip, {0, 0, 0});
  std::vector<uint8_t> light(size_t{4} * 4 * 4, 240);
  const FrameView frame{light.data(), 16, kSize};
  // Half steps: the earlier field goes 1/2 of the way to the colour, the later one 3/4.
  const FrameView first = dip.Blend(frame, frame, 0, 3);
  EXPECT_EQ(first.Row(0)[0], 120);
  EXPECT_EQ(first.Row(1)[0], 60);
}

}  // namespace
}  // namespace kelto::host
