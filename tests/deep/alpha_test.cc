// Transparent pictures over backgrounds and backdrops.
#include <gtest/gtest.h>

#include "tests/deep/images.h"

namespace kelto {
namespace {

using test::MakeDeepJob;
using test::MakePicture;
using test::RenderedFrame;

constexpr DeepPixel kNothing = {0, 0, 0, 0};
constexpr DeepSample kBothSamples[] = {DeepSample::kUnsigned16, DeepSample::kFloat32};

/// A white disc on nothing, whose edge is a pixel wide.
DeepPicture Disc(DeepSample sample) {
  return MakePicture(120, 90, sample, true, [](int32_t x, int32_t y) {
    const double alpha = std::clamp(30.5 - std::hypot(x - 59.5, y - 44.5), 0.0, 1.0);
    return DeepPixel{alpha, alpha, alpha, alpha};
  });
}

TEST(DeepAlpha, AWhiteDiscOverRedHasNoFringe) {
  // Enlarged and reduced: every pixel is a mixture of red and white, no darker than either.
  for (const DeepSample sample : kBothSamples) {
    const double rounding = sample == DeepSample::kUnsigned16 ? 1.01 / 65535 : 1e-6;
    const DeepPicture disc = Disc(sample);
    for (const bool linearLight : {false, true}) {
      for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
        for (const auto& [width, height] : {std::pair(500, 376), {48, 36}, {23, 17}}) {
          DeepJob job = MakeDeepJob(test::WholeOf(120, 90), width, height, mode);
          job.background = {1, 0, 0, 1};
          job.linearLight = linearLight;
          const DeepPicture frame = RenderedFrame(job, disc, sample);
          bool white = false, red = false;
          for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
              const DeepPixel pixel = ReadPixel(frame.view(), x, y);
              ASSERT_NEAR(pixel[0], 1.0, rounding) << "filter " << mode;
              ASSERT_GE(pixel[1], -rounding) << "filter " << mode;
              ASSERT_LE(pixel[1], 1.0 + rounding) << "filter " << mode;
              ASSERT_NEAR(pixel[1], pixel[2], rounding);
              ASSERT_EQ(pixel[3], 1.0);
              white |= pixel[1] > 0.99;
              red |= pixel[1] < 0.01;
            }
          }
          EXPECT_TRUE(white && red) << "filter " << mode;
        }
      }
    }
  }
}

TEST(DeepAlpha, AFilmOverNothingKeepsTransparency) {
  DeepJob job = MakeDeepJob(test::WholeOf(120, 90), 200, 150, kFilterHiQual);
  job.background = {0, 0, 0, 0};
  const DeepPicture frame =
      RenderedFrame(job, Disc(DeepSample::kUnsigned16), DeepSample::kUnsigned16);
  EXPECT_EQ(ReadPixel(frame.view(), 3, 3), kNothing);
  EXPECT_EQ(ReadPixel(frame.view(), 100, 75), (DeepPixel{1, 1, 1, 1}));
  for (int32_t y = 0; y < 150; ++y) {
    for (int32_t x = 0; x < 200; ++x) {
      const DeepPixel pixel = ReadPixel(frame.view(), x, y);
      ASSERT_LE(pixel[0], pixel[3]) << "colours never pass alpha in 16 bits";
    }
  }
}

TEST(DeepAlpha, TheBackdropShowsThroughAndAround) {
  const DeepPicture half = MakePicture(40, 30, DeepSample::kFloat32, true, [](int32_t, int32_t) {
    return DeepPixel{0.5, 0.25, 0.0, 0.5};
  });
  for (const DeepSample sample : kBothSamples) {
    // A slope behind, which the target holds itself.
    const auto slope = [](int32_t x, int32_t) { return DeepPixel{x / 100.0, 0.5, 1.0, 1.0}; };
    DeepPicture frame = MakePicture(100, 40, sample, true, slope);
    DeepJob job = MakeDeepJob(test::WholeOf(40, 30), 100, 40, kFilterCatmull);
    job.targetRect = {20.5f, 5.5f, 59.5f, 34.5f};
    job.backdrop = frame.view();
    RenderDeep(job, half.view(), frame.view());
    for (int32_t y = 0; y < 40; ++y) {
      for (int32_t x = 0; x < 100; ++x) {
        const bool inside = x >= 20 && x < 60 && y >= 5 && y < 35;
        const DeepPixel behind = slope(x, y), pixel = ReadPixel(frame.view(), x, y);
        const DeepPixel expected =
            inside ? DeepPixel{0.5 + behind[0] / 2, 0.25 + 0.25, 0.5, 1.0} : behind;
        for (size_t c = 0; c < 4; ++c) {
          ASSERT_NEAR(pixel[c], expected[c], 1.01 / 65535) << x << ", " << y;
        }
      }
    }
  }
}

TEST(DeepAlpha, WhatABackdropLacksIsTheBackground) {
  const DeepPicture small = MakePicture(10, 8, DeepSample::kFloat32, false, [](int32_t, int32_t) {
    return DeepPixel{0, 1, 0, 1};
  });
  DeepJob job = MakeDeepJob({}, 20, 12, kFilterTriangle);
  job.background = {1, 0, 0, 1};
  job.backdrop = small.view();
  DeepPicture frame(20, 12, DeepSample::kUnsigned16, true);
  RenderDeep(job, {}, frame.view());
  EXPECT_EQ(ReadPixel(frame.view(), 9, 7), (DeepPixel{0, 1, 0, 1}));
  EXPECT_EQ(ReadPixel(frame.view(), 10, 7), (DeepPixel{1, 0, 0, 1}));
  EXPECT_EQ(ReadPixel(frame.view(), 9, 8), (DeepPixel{1, 0, 0, 1}));
}

TEST(DeepAlpha, WithoutAlphaTheFourthSampleMeansNothing) {
  for (const DeepSample sample : kBothSamples) {
    DeepPicture picture = MakePicture(20, 16, sample, true, [](int32_t x, int32_t y) {
      return DeepPixel{0.3, 0.6, 0.9, (x + y) % 3 / 2.0};
    });
    DeepSource opaque = picture.view();
    if (sample == DeepSample::kUnsigned16) {
      // WritePixel has held colours within their alpha.
      for (int32_t y = 0; y < 16; ++y) {
        for (int32_t i = 0; i < 80; i += 4) {
          uint16_t* const at = picture.view().Row<uint16_t>(y) + i;
          at[0] = 65535 * 3 / 10, at[1] = 65535 * 6 / 10, at[2] = 65535 * 9 / 10;
        }
      }
    }
    opaque.hasAlpha = false;
    DeepPicture frame(30, 24, sample, false);
    RenderDeep(MakeDeepJob(test::WholeOf(20, 16), 30, 24, kFilterHiQual), opaque, frame.view());
    DeepSource all = frame.view();
    all.hasAlpha = true;
    for (int32_t y = 0; y < 24; ++y) {
      for (int32_t x = 0; x < 30; ++x) {
        const DeepPixel pixel = ReadPixel(all, x, y);
        ASSERT_NEAR(pixel[0], 0.3, 2.0 / 65535);
        ASSERT_NEAR(pixel[2], 0.9, 2.0 / 65535);
        ASSERT_EQ(pixel[3], 1.0);
      }
    }
  }
}

TEST(DeepAlpha, FloatsBeyondWhiteStayInColoursAndNotInAlpha) {
  // A bright half next to nothing: Hi Qual overshoots on both sides of the step.
  const DeepPicture picture =
      MakePicture(40, 8, DeepSample::kFloat32, true, [](int32_t x, int32_t) {
        return x < 20 ? DeepPixel{5, 5, 5, 1} : kNothing;
      });
  DeepJob job = MakeDeepJob(test::WholeOf(40, 8), 130, 26, kFilterHiQual);
  job.background = {0, 0, 0, 0};
  const DeepPicture frame = RenderedFrame(job, picture, DeepSample::kFloat32);
  EXPECT_NEAR(ReadPixel(frame.view(), 20, 13)[0], 5.0, 0.05);
  for (int32_t x = 0; x < 130; ++x) {
    const DeepPixel pixel = ReadPixel(frame.view(), x, 13);
    ASSERT_GE(pixel[3], 0.0);
    ASSERT_LE(pixel[3], 1.0);
    ASSERT_LE(pixel[0], 5.0 + 1e-5) << "divided by the alpha that overshot as much";
  }
}

TEST(DeepLight, MixesAsLightDoes) {
  // Black and white columns seen from afar: half the light is 0.735 of the signal.
  const DeepPicture stripes =
      MakePicture(400, 40, DeepSample::kUnsigned16, false, [](int32_t x, int32_t) {
        const double value = x % 2;
        return DeepPixel{value, value, value, 1.0};
      });
  DeepJob job = MakeDeepJob(test::WholeOf(400, 40), 40, 4, kFilterCubic);
  EXPECT_NEAR(ReadPixel(RenderedFrame(job, stripes, DeepSample::kFloat32).view(), 20, 2)[0], 0.5,
              0.01);
  job.linearLight = true;
  EXPECT_NEAR(ReadPixel(RenderedFrame(job, stripes, DeepSample::kFloat32).view(), 20, 2)[0], 0.7354,
              0.01);
}

TEST(DeepLight, CurvesAreInverseToEachOther) {
  EXPECT_NEAR(DecodeLight(0.5), 0.21404, 1e-5);
  EXPECT_EQ(DecodeLight(0.0), 0.0);
  EXPECT_NEAR(DecodeLight(1.0), 1.0, 1e-12);
  for (double value = -2.0; value <= 3.0; value += 0.01) {
    EXPECT_NEAR(EncodeLight(DecodeLight(value)), value, 1e-6) << value;
  }
}

}  // namespace
}  // namespace kelto
