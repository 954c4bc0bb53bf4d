#include "deep/dither.h"

#include <gtest/gtest.h>

#include "tests/deep/images.h"

namespace kelto {
namespace {

/// A slope so slow that a level of 8 bits is 100 pixels long, and its levels before rounding.
constexpr int32_t kSlopeWidth = 1000, kSlopeHeight = 64;
double SlopeLevel(int32_t x) { return 100.0 + x / 100.0; }

DeepPicture Slope(DeepSample sample) {
  return test::MakePicture(kSlopeWidth, kSlopeHeight, sample, false, [](int32_t x, int32_t) {
    const double value = SlopeLevel(x) / 255.0;
    return DeepPixel{value, value, value, 1.0};
  });
}

std::vector<uint8_t> Dithered(const DeepPicture& frame) {
  const auto width = static_cast<size_t>(frame.width()),
             height = static_cast<size_t>(frame.height());
  std::vector<uint8_t> bytes(4 * width * height);
  DitherTo8Bits(frame.view(), bytes.data(), ptrdiff_t{4} * frame.width());
  return bytes;
}

TEST(Dither, TakesEachValueToOneOfTheTwoLevelsBesideIt) {
  for (const DeepSample sample : {DeepSample::kUnsigned16, DeepSample::kFloat32}) {
    const std::vector<uint8_t> bytes = Dithered(Slope(sample));
    for (size_t i = 0; i < bytes.size(); ++i) {
      const auto x = static_cast<int32_t>(i / 4 % kSlopeWidth);
      if (i % 4 == 3) {
        ASSERT_EQ(bytes[i], 255);
      } else {
        ASSERT_LT(std::abs(bytes[i] - SlopeLevel(x)), 1.0) << x;
      }
    }
  }
}

TEST(Dither, ShowsNoBandsInASlowSlope) {
  const std::vector<uint8_t> bytes = Dithered(Slope(DeepSample::kUnsigned16));
  // Rounded, a level is a run of 100 pixels.
  int32_t longest = 0;
  for (int32_t y = 0; y < kSlopeHeight; ++y) {
    int32_t run = 1;
    for (int32_t x = 1; x < kSlopeWidth; ++x) {
      const uint8_t* const at = bytes.data() + 4 * (y * kSlopeWidth + x);
      run = at[0] == at[-4] ? run + 1 : 1;
      longest = std::max(longest, run);
    }
  }
  EXPECT_LE(longest, 40) << "beside a level itself there are few pixels of another one";
  // The mean of every square is the slope's.
  for (int32_t left = 0; left + 16 <= kSlopeWidth; left += 16) {
    double sum = 0.0, expected = 0.0;
    for (int32_t y = 0; y < 16; ++y) {
      for (int32_t x = left; x < left + 16; ++x) {
        sum += bytes[static_cast<size_t>(4 * (y * kSlopeWidth + x))];
        expected += SlopeLevel(x);
      }
    }
    ASSERT_NEAR(sum / 256, expected / 256, 0.06) << left;
  }
}

TEST(Dither, LeavesLevelsAsTheyAre) {
  const DeepPicture levels =
      test::MakePicture(256, 8, DeepSample::kUnsigned16, true, [](int32_t x, int32_t) {
        return DeepPixel{x / 255.0, x / 510.0, 0.0, x / 255.0};
      });
  const std::vector<uint8_t> bytes = Dithered(levels);
  for (size_t i = 0; i < bytes.size(); i += 4) {
    ASSERT_EQ(bytes[i], i / 4 % 256);
    ASSERT_EQ(bytes[i + 3], i / 4 % 256);
  }
}

TEST(Dither, KeepsColoursWithinTheirAlpha) {
  const DeepPicture frame =
      test::MakePicture(300, 40, DeepSample::kUnsigned16, true, [](int32_t x, int32_t y) {
        const double alpha = (x + 300 * y) / 12000.0;
        return DeepPixel{alpha, alpha * 0.99, alpha * 0.5, alpha};
      });
  const std::vector<uint8_t> bytes = Dithered(frame);
  for (size_t i = 0; i < bytes.size(); i += 4) {
    ASSERT_EQ(bytes[i], bytes[i + 3]);
    ASSERT_LE(bytes[i + 1], bytes[i + 3]);
  }
}

TEST(Dither, FollowsTheFramesPixelsInPartsAndInEveryFrame) {
  const DeepPicture frame = Slope(DeepSample::kUnsigned16);
  const std::vector<uint8_t> whole = Dithered(frame);
  EXPECT_EQ(Dithered(frame), whole);
  DeepSource part = frame.view();
  part.pixels = part.Row<uint16_t>(10) + 4 * 70;
  part.width = 50;
  part.height = 20;
  std::vector<uint8_t> bytes(size_t{4} * 50 * 20);
  // Bottom row first.
  DitherTo8Bits(part, bytes.data() + size_t{4} * 50 * 19, -4 * 50, 70, 10);
  for (size_t y = 0; y < 20; ++y) {
    const uint8_t* const expected = whole.data() + 4 * ((10 + y) * kSlopeWidth + 70);
    ASSERT_TRUE(std::equal(expected, expected + 200, bytes.data() + 200 * (19 - y))) << y;
  }
}

TEST(Dither, HoldsFloatsWithinTheLevels) {
  const DeepPicture frame =
      test::MakePicture(4, 1, DeepSample::kFloat32, true, [](int32_t x, int32_t) {
        const double values[] = {-0.5, 1.5, std::nan(""), 1e30};
        return DeepPixel{values[x], 0.0, 1.0, 1.0};
      });
  const std::vector<uint8_t> bytes = Dithered(frame);
  EXPECT_EQ(bytes[0], 0);
  EXPECT_EQ(bytes[4], 255);
  EXPECT_EQ(bytes[8], 0);
  EXPECT_EQ(bytes[12], 255);
}

}  // namespace
}  // namespace kelto
