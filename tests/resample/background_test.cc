#include "resample/background.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/ycrcb_weights.h"
#include "resample/resample.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;
using Bytes4 = std::array<uint8_t, 4>;

Bytes4 Pattern(int32_t selector, const Bytes4& bytes) {
  Background background;
  background.selector = selector;
  std::copy(bytes.begin(), bytes.end(), background.bytes);
  return BackgroundPattern(background);
}

/// A canvas over the rows of a buffer.
Canvas CanvasOf(GuardedBuffer& buffer, int32_t width, PixelFormat format) {
  Canvas canvas;
  canvas.pixels = buffer.Pixels();
  canvas.width = width;
  canvas.rows = static_cast<int32_t>(buffer.Rows());
  canvas.rowBytes = buffer.RowDelta();
  canvas.format = format;
  return canvas;
}

Background Colour(const Bytes4& bytes) {
  Background background;
  background.selector = 1;
  std::copy(bytes.begin(), bytes.end(), background.bytes);
  return background;
}

TEST(BackgroundPattern, OfRgbIsWeighedAsPicturesAre) {
  // The engine includes no platform header, and so has the weights a second time.
  const auto weigh = [](const ComponentWeights& weights, int32_t offset, const Bytes4& rgb) {
    const int32_t weighed = Weigh<int32_t>(weights, rgb[0], rgb[1], rgb[2]);
    return static_cast<uint8_t>((weighed + offset * kWeightUnit) / kWeightUnit);
  };
  for (int32_t i = 0; i < 52 * 52 * 52; ++i) {
    const auto level = [&](int32_t step) { return static_cast<uint8_t>(i / step % 52 * 5); };
    const Bytes4 rgb = {level(1), level(52), level(52 * 52), 0};
    const uint8_t luma = weigh(kLumaWeights, 0, rgb);
    const Bytes4 expected = {luma, weigh(kCbWeights, kChromaOffset, rgb), luma,
                             weigh(kCrWeights, kChromaOffset, rgb)};
    ASSERT_EQ(Pattern(0, rgb), expected) << +rgb[0] << ' ' << +rgb[1] << ' ' << +rgb[2];
  }
}

TEST(BackgroundPattern, SelectorZeroConvertsRgbToYCbYCrTruncated) {
  EXPECT_EQ(Pattern(0, {40, 90, 200, 7}), (Bytes4{87, 191, 87, 94}));
  EXPECT_EQ(Pattern(0, {255, 255, 255, 0}), (Bytes4{255, 128, 255, 128}));
  EXPECT_EQ(Pattern(0, {0, 0, 0, 0}), (Bytes4{0, 128, 0, 128}));
  EXPECT_EQ(Pattern(0, {255, 0, 0, 0}), (Bytes4{76, 84, 76, 255}));
  EXPECT_EQ(Pattern(0, {0, 0, 255, 0}), (Bytes4{29, 255, 29, 107}));
  EXPECT_EQ(Pattern(0, {255, 255, 0, 0}), (Bytes4{225, 0, 225, 148}));
}

TEST(BackgroundPattern, SelectorOneTakesTheBytesAsTheyStand) {
  EXPECT_EQ(Pattern(1, {1, 2, 3, 4}), (Bytes4{1, 2, 3, 4}));
}

TEST(BackgroundPattern, OtherSelectorsConvertYCbCrToRgbWithTheChromaAsStored) {
  for (const int32_t selector : {2, 3, -1}) {
    // R = 50 + 1.402 * 60, B = 50 + 1.772 * 40, G from luma.
    EXPECT_EQ(Pattern(selector, {50, 40, 99, 60}), (Bytes4{134, 0, 120, 0}));
    EXPECT_EQ(Pattern(selector, {50, 0, 99, 0}), (Bytes4{50, 50, 50, 0}));
  }
}

TEST(BackgroundPattern, OtherSelectorsSaturate) {
  EXPECT_EQ(Pattern(2, {200, 200, 0, 200}), (Bytes4{255, 0, 255, 0}));
}

TEST(FillBackground, FillsTheBandsAroundThePictureAndNothingElse) {
  for (const bool bottomUp : {false, true}) {
    GuardedBuffer buffer(7, 5, 2, 3, bottomUp);
    FillBackground(CanvasOf(buffer, 7, PixelFormat::kPacked422), Colour({10, 20, 30, 40}), {2, 5},
                   {1, 3});
    for (size_t y = 0; y < 5; ++y) {
      for (size_t x = 0; x < 7; ++x) {
        const bool inside = x >= 2 && x < 5 && y >= 1 && y < 3;
        const uint8_t luma = x % 2 == 0 ? 10 : 30, chroma = x % 2 == 0 ? 20 : 40;
        EXPECT_EQ(buffer.Row(y)[2 * x], inside ? GuardedBuffer::kGuard : luma);
        EXPECT_EQ(buffer.Row(y)[2 * x + 1], inside ? GuardedBuffer::kGuard : chroma);
      }
    }
    buffer.ExpectGuardsUntouched();
  }
}

TEST(FillBackground, FillsEverythingWhenThePictureIsEmptyInEitherDirection) {
  const Range some = {1, 3}, none = {2, 2};
  for (const auto& [columns, rows] : {std::pair(some, none), std::pair(none, some)}) {
    GuardedBuffer buffer(4, 4, 4);
    FillBackground(CanvasOf(buffer, 4, PixelFormat::kFourByte), Colour({1, 2, 3, 4}), columns,
                   rows);
    const std::vector<uint8_t> bytes = buffer.Packed();
    for (size_t i = 0; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], i % 4 + 1);
    buffer.ExpectGuardsUntouched();
  }
}

/// Every byte of a video tells its place.
uint8_t VideoByte(size_t row, size_t byte) { return static_cast<uint8_t>(50 + 29 * row + byte); }

class VideoBackground : public ::testing::TestWithParam<bool> {
 protected:
  /// `video` fills itself and becomes the background.
  static Background Show(GuardedBuffer& video, int32_t width) {
    for (size_t row = 0; row < video.Rows(); ++row) {
      for (size_t i = 0; i < video.RowBytes(); ++i) video.Row(row)[i] = VideoByte(row, i);
    }
    Background background;
    background.videoRow0 = video.Pixels();
    background.videoRowBytes = video.RowDelta();
    background.videoWidth = width;
    background.videoHeight = static_cast<int32_t>(video.Rows());
    return background;
  }
};

TEST_P(VideoBackground, IsTheInputsPixelWithItsOwnRowDelta) {
  GuardedBuffer video(6, 4, 2, 29, GetParam());
  GuardedBuffer buffer(6, 4, 2);
  FillBackground(CanvasOf(buffer, 6, PixelFormat::kPacked422), Show(video, 6), {1, 3}, {2, 4});
  for (size_t y = 0; y < 4; ++y) {
    for (size_t i = 0; i < 12; ++i) {
      const bool inside = i / 2 >= 1 && i / 2 < 3 && y >= 2;
      EXPECT_EQ(buffer.Row(y)[i], inside ? GuardedBuffer::kGuard : VideoByte(y, i));
    }
  }
  buffer.ExpectGuardsUntouched();
}

TEST_P(VideoBackground, IsBlackWhereTheVideoIsSmallerThanTheFrame) {
  GuardedBuffer video(3, 2, 2, 5, GetParam());
  GuardedBuffer buffer(5, 4, 2);
  FillBackground(CanvasOf(buffer, 5, PixelFormat::kPacked422), Show(video, 3), {}, {});
  for (size_t y = 0; y < 4; ++y) {
    for (size_t i = 0; i < 10; ++i) {
      const uint8_t black = i % 2 == 0 ? 16 : 128;
      EXPECT_EQ(buffer.Row(y)[i], y < 2 && i < 6 ? VideoByte(y, i) : black) << y << ", " << i;
    }
  }
  buffer.ExpectGuardsUntouched();
}

TEST_P(VideoBackground, MayBeTheFramesOwnBuffer) {
  GuardedBuffer video(6, 4, 2, 0, GetParam());
  const Background background = Show(video, 6);
  const std::vector<uint8_t> before = video.Packed();
  FillBackground(CanvasOf(video, 6, PixelFormat::kPacked422), background, {1, 3}, {1, 2});
  EXPECT_EQ(video.Packed(), before);
}

TEST_P(VideoBackground, ShowsThroughPixelsThatThePictureCoversInPart) {
  GuardedBuffer video(8, 8, 2, 0, GetParam());
  GuardedBuffer buffer(8, 8, 2);
  SourceImage image(4, 8, [](int, int, int c) { return c == 0 ? 250 : 10; });
  // The image's left edge lies a quarter into column 3.
  ResampleJob job = MakeJob(image, {-2.75f, 0.5f, 4.25f, 7.5f}, buffer, 8, 8, kFilterTriangle);
  job.background = Show(video, 8);
  ResampleTo422(job);
  for (size_t y = 0; y < 8; ++y) {
    EXPECT_EQ(buffer.Row(y)[4], VideoByte(y, 4));
    EXPECT_NEAR(buffer.Row(y)[6], 0.25 * VideoByte(y, 6) + 0.75 * 250, 0.51);
    EXPECT_NEAR(buffer.Row(y)[7], 0.25 * VideoByte(y, 7) + 0.75 * 10, 0.51);
    EXPECT_EQ(buffer.Row(y)[8], 250);
  }
}

INSTANTIATE_TEST_SUITE_P(RowOrder, VideoBackground, ::testing::Bool(),
                         [](const auto& order) { return order.param ? "BottomUp" : "TopDown"; });

TEST(VideoBackgroundOfNoSize, IsBlackAndNeverRead) {
  GuardedBuffer buffer(3, 2, 2);
  Background background;
  const uint8_t nothing = 0;
  background.videoRow0 = &nothing;
  background.videoWidth = -5;
  background.videoHeight = -5;
  FillBackground(CanvasOf(buffer, 3, PixelFormat::kPacked422), background, {}, {});
  const std::vector<uint8_t> bytes = buffer.Packed();
  for (size_t i = 0; i < bytes.size(); ++i) EXPECT_EQ(bytes[i], i % 2 == 0 ? 16 : 128);
}

TEST(FieldBackground, FillsTheFieldsRowsOnly) {
  for (const int32_t mode : {kFilterRealTime, kFilterCubic}) {
    GuardedBuffer buffer(4, 3, 2);
    SourceImage image(4, 6);
    ResampleJob job = MakeJob(image, {20.5f, 0.5f, 23.5f, 5.5f}, buffer, 4, 6, mode);
    job.fieldRows = kOddRows;
    job.interlaceSelector = 2;
    job.background = Colour({9, 8, 7, 6});
    ResampleTo422(job);
    for (size_t y = 0; y < 3; ++y) EXPECT_EQ(buffer.Row(y)[7], 6);
    buffer.ExpectGuardsUntouched();
  }
}

}  // namespace
}  // namespace kelto
