// What frames of the deep engine have in common with the 8-bit engine's, and with each other.
#include "deep/engine.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "resample/resample.h"
#include "tests/deep/images.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::MakeDeepJob;
using test::RandomDeep;
using test::RenderedFrame;
using test::SameBits;

DeepJob AnyJob(RandomDeep& random, const DeepPicture& picture) {
  const int32_t width = random.Whole(20, 120), height = 2 * random.Whole(10, 45);
  DeepJob job = MakeDeepJob(random.View(picture, width, height), width, height,
                            random.Whole(kFilterRealTime, kFilterUltraQual));
  job.fieldRows = random.Whole(kEvenRows, kAllRows);
  job.background = {0.125f, 0.25f, 0.5f, 0.5f};
  job.linearLight = random.Whole(0, 3) == 0;
  return job;
}

TEST(DeepEngine, DrawsWhatTheEightBitEngineDraws) {
  RandomDeep random(11);
  for (int i = 0; i < 300; ++i) {
    test::SourceImage image(random.Whole(1, 150), random.Whole(1, 120),
                            [&](int, int, int c) { return c == 3 ? 255 : random.Whole(0, 255); });
    const DeepPicture picture = test::MakePicture(
        image.width, image.height, DeepSample::kUnsigned16, false, [&](int32_t x, int32_t y) {
          const uint8_t* const at = image.bytes.data() + 4 * (y * image.width + x);
          return DeepPixel{at[0] / 255.0, at[1] / 255.0, at[2] / 255.0, 1.0};
        });
    DeepJob job = AnyJob(random, picture);
    job.linearLight = false;
    job.background = {0.2f, 0.4f, 0.8f, 1.0f};
    job.wholeKernels = false;
    const DeepPicture deep = RenderedFrame(job, picture, DeepSample::kUnsigned16);

    test::GuardedBuffer eight(deep.width(), deep.height(), 4);
    ResampleJob eightJob;
    eightJob.source = image.Block();
    eightJob.dest = {eight.Pixels(), job.frame.width, job.frame.height, eight.RowDelta()};
    eightJob.sourceRect = job.sourceRect;
    eightJob.destRect = job.targetRect;
    eightJob.filterMode = job.filterMode;
    eightJob.fieldRows = job.fieldRows;
    eightJob.interlaceSelector = job.fieldRows == kAllRows ? 0 : 2;
    eightJob.background.selector = 1;
    const uint8_t colour[4] = {51, 102, 204, 255};
    std::copy_n(colour, 4, eightJob.background.bytes);
    ResampleTo4Byte(eightJob);

    for (int32_t y = 0; y < deep.height(); ++y) {
      for (int32_t x = 0; x < deep.width(); ++x) {
        const DeepPixel pixel = ReadPixel(deep.view(), x, y);
        const uint8_t* const expected = eight.Row(static_cast<size_t>(y)) + 4 * x;
        for (size_t c = 0; c < 3; ++c) {
          // Half a level of the 8-bit frame's rounding, one of its fixed point, half of its mixing.
          ASSERT_NEAR(pixel[c] * 255.0, expected[c], 1.6)
              << "job " << i << " filter " << job.filterMode << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST(DeepEngine, PartsOfAFrameAreTheFrameToTheBit) {
  RandomDeep random(12);
  for (int i = 0; i < 200; ++i) {
    const DeepSample sample = i % 2 == 0 ? DeepSample::kUnsigned16 : DeepSample::kFloat32;
    const DeepPicture picture = random.Picture(sample, i % 3 > 0);
    DeepJob job = AnyJob(random, picture);
    const DeepPicture whole = RenderedFrame(job, picture, sample);
    DeepPicture parts(whole.width(), whole.height(), sample, true);
    const int32_t across = random.Whole(1, whole.width()), down = random.Whole(1, whole.height());
    for (int32_t top = 0; top < whole.height(); top += down) {
      for (int32_t left = 0; left < whole.width(); left += across) {
        job.left = left;
        job.top = top;
        DeepTarget part = parts.view();
        part.pixels = part.Row<uint8_t>(top) + PixelBytes(sample) * static_cast<size_t>(left);
        part.width = std::min(across, whole.width() - left);
        part.height = std::min(down, whole.height() - top);
        RenderDeep(job, picture.view(), part);
      }
    }
    ASSERT_TRUE(SameBits(whole, parts)) << "job " << i << " filter " << job.filterMode;
  }
}

TEST(DeepEngine, AWindowMayReachBeyondTheFrame) {
  const DeepPicture picture =
      test::MakePicture(30, 20, DeepSample::kUnsigned16, false, [](int32_t, int32_t) {
        return DeepPixel{0.25, 0.25, 0.25, 1.0};
      });
  DeepJob job = MakeDeepJob(test::WholeOf(30, 20), 60, 40, kFilterHiQual);
  job.background = {1, 0, 0, 1};
  job.left = -5;
  job.top = 30;
  DeepPicture frame(80, 20, DeepSample::kUnsigned16, true);
  RenderDeep(job, picture.view(), frame.view());
  const auto red = [&](int32_t x, int32_t y) { return ReadPixel(frame.view(), x, y)[0]; };
  EXPECT_EQ(red(4, 0), 1.0);
  EXPECT_NEAR(red(5, 0), 0.25, 1e-4);
  EXPECT_NEAR(red(64, 9), 0.25, 1e-4);
  EXPECT_EQ(red(65, 9), 1.0);
  EXPECT_EQ(red(30, 10), 1.0);
}

TEST(DeepEngine, RowsMayRunUpwards) {
  RandomDeep random(13);
  for (int i = 0; i < 40; ++i) {
    const DeepSample sample = i % 2 == 0 ? DeepSample::kUnsigned16 : DeepSample::kFloat32;
    const DeepPicture picture = random.Picture(sample, true);
    const DeepJob job = AnyJob(random, picture);
    const DeepPicture expected = RenderedFrame(job, picture, sample);

    DeepPicture below(picture.width(), picture.height(), sample, true);
    DeepTarget upward = below.view();
    upward.pixels = upward.Row<uint8_t>(picture.height() - 1);
    upward.rowBytes = -upward.rowBytes;
    const size_t bytes = PixelBytes(sample) * static_cast<size_t>(picture.width());
    for (int32_t y = 0; y < picture.height(); ++y) {
      std::memcpy(upward.Row<uint8_t>(y), picture.view().Row<uint8_t>(y), bytes);
    }
    DeepPicture frame(expected.width(), expected.height(), sample, true);
    DeepTarget target = frame.view();
    target.pixels = target.Row<uint8_t>(frame.height() - 1);
    target.rowBytes = -target.rowBytes;
    RenderDeep(job, upward, target);
    const size_t rowBytes = PixelBytes(sample) * static_cast<size_t>(frame.width());
    for (int32_t y = 0; y < frame.height(); ++y) {
      ASSERT_EQ(std::memcmp(target.Row<uint8_t>(y), expected.view().Row<uint8_t>(y), rowBytes), 0);
    }
  }
}

TEST(DeepEngine, FieldsHoldEverySecondRowOfTheFrame) {
  RandomDeep random(14);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    const DeepPicture picture = random.Picture(DeepSample::kUnsigned16, true);
    DeepJob job = MakeDeepJob(random.View(picture, 60, 40), 60, 40, mode);
    const DeepPicture frame = RenderedFrame(job, picture, DeepSample::kUnsigned16);
    for (const int32_t field : {kEvenRows, kOddRows}) {
      job.fieldRows = field;
      const DeepPicture rows = RenderedFrame(job, picture, DeepSample::kUnsigned16);
      for (int32_t y = 0; y < 20; ++y) {
        ASSERT_EQ(std::memcmp(rows.view().Row<uint8_t>(y), frame.view().Row<uint8_t>(2 * y + field),
                              8 * 60),
                  0)
            << "filter " << mode << " row " << y;
      }
    }
  }
}

TEST(DeepEngine, DepthsMayDiffer) {
  RandomDeep random(15);
  const DeepPicture picture = random.Picture(DeepSample::kUnsigned16, true);
  const DeepJob job = MakeDeepJob(test::WholeOf(picture.width(), picture.height()), 70, 50, 4);
  const DeepPicture frame = RenderedFrame(job, picture, DeepSample::kUnsigned16);
  const DeepPicture floats = RenderedFrame(job, picture, DeepSample::kFloat32);
  DeepPicture floatPicture(picture.width(), picture.height(), DeepSample::kFloat32, true);
  for (int32_t y = 0; y < picture.height(); ++y) {
    for (int32_t x = 0; x < picture.width(); ++x) {
      WritePixel(floatPicture.view(), x, y, ReadPixel(picture.view(), x, y));
    }
  }
  EXPECT_LE(test::LargestDifference(RenderedFrame(job, floatPicture, DeepSample::kFloat32), floats),
            1e-6);
  EXPECT_LE(
      test::LargestDifference(RenderedFrame(job, floatPicture, DeepSample::kUnsigned16), frame),
      1.01 / 65535);
}

TEST(DeepEngine, RectanglesThatMakeNoSenseShowTheBackground) {
  RandomDeep random(16);
  const DeepPicture picture = random.Picture(DeepSample::kUnsigned16, true);
  const float nan = std::nanf("");
  for (const RectF& view : {RectF{5, 5, 5, 5}, RectF{9, 9, 2, 2}, RectF{nan, 0, 9, 9},
                            RectF{-1e30f, -1e30f, 1e30f, 1e30f}, RectF{900, 900, 950, 950}}) {
    for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
      DeepJob job = MakeDeepJob(view, 30, 20, mode);
      job.background = {0.0f, 1.0f, 0.0f, 1.0f};
      const DeepPicture frame = RenderedFrame(job, picture, DeepSample::kFloat32);
      EXPECT_EQ(ReadPixel(frame.view(), 15, 10), (DeepPixel{0, 1, 0, 1}));
    }
  }
}

std::string RefusalOf(const DeepSource& picture, const DeepTarget& target) {
  try {
    RenderDeep(MakeDeepJob(test::WholeOf(8, 8), 8, 8, 6), picture, target);
  } catch (const std::invalid_argument& refusal) {
    return refusal.what();
  }
  return "";
}

TEST(DeepEngine, RefusesRowsThatOverlap) {
  DeepPicture picture(8, 8, DeepSample::kFloat32, true), frame(8, 8, DeepSample::kFloat32, true);
  DeepSource source = picture.view();
  source.rowBytes = 127;
  EXPECT_EQ(RefusalOf(source, frame.view()),
            "the picture's rows overlap: rowBytes is 127, a row of pixels takes 128");
  source = picture.view();
  source.height = -1;
  EXPECT_EQ(RefusalOf(source, frame.view()), "the picture's sides must not be below 0");
  DeepTarget target = frame.view();
  target.rowBytes = -64;
  EXPECT_EQ(RefusalOf(picture.view(), target),
            "the target's rows overlap: rowBytes is -64, a row of pixels takes 128");
}

}  // namespace
}  // namespace kelto
