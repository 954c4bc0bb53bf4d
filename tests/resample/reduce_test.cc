#include <gtest/gtest.h>

#include "resample/resample.h"
#include "tests/resample/buffers.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;
using test::WholeFrame;

/// The windows that the image cache passes: the source's starts at 0.5, the destination's at 0.
ResampleJob CacheJob(SourceImage& image, GuardedBuffer& reduced, int32_t width, int32_t height,
                     int32_t mode) {
  ResampleJob job =
      MakeJob(image, WholeFrame(image.width, image.height), reduced, width, height, mode);
  job.destRect.left = job.destRect.top = 0.0f;
  return job;
}

TEST(ReduceImage, AgreesWithReferenceResults) {
  for (const nlohmann::json& c : test::Vectors()["reduce"]) {
    SCOPED_TRACE("mode " + c["mode"].dump());
    SourceImage image(c["width"], c["height"]);
    image.bytes = test::Bytes(c["image"]);
    GuardedBuffer reduced(c["new_width"], c["new_height"], 4);
    ReduceImage(CacheJob(image, reduced, c["new_width"], c["new_height"], c["mode"]));
    const test::Difference difference =
        test::LargestDifference(reduced.Packed(), test::Bytes(c["out"]));
    EXPECT_LE(difference.most, 1) << "byte " << difference.place;
    reduced.ExpectGuardsUntouched();
  }
}

TEST(ReduceImage, KeepsAConstantImageInEveryModeAndFillsTheWholeDestination) {
  SourceImage image(61, 47, [](int, int, int c) { return 31 + 50 * c; });
  for (int32_t mode = -1; mode <= 8; ++mode) {
    GuardedBuffer reduced(20, 15, 4);
    ReduceImage(CacheJob(image, reduced, 20, 15, mode));
    const std::vector<uint8_t> bytes = reduced.Packed();
    for (size_t i = 0; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 31 + 50 * (i % 4)) << mode;
  }
}

TEST(ReduceImage, WithTheTriangleLeavesOutTheSamplesThatLieAhead) {
  // One bright column, between the positions 12.5 and 15.5 that columns 4 and 5 sample; taps that
  // reached ahead would show it in both.
  SourceImage image(30, 30, [](int x, int, int) { return x == 14 ? 255 : 0; });
  GuardedBuffer reduced(10, 10, 4);
  ResampleJob job = CacheJob(image, reduced, 10, 10, kFilterTriangle);
  job.destRect = WholeFrame(10, 10);
  ReduceImage(job);
  for (size_t x = 0; x < 10; ++x) EXPECT_EQ(reduced.Row(5)[4 * x], x == 5 ? 85 : 0) << x;
}

TEST(ReduceImage, WorksDownToASinglePixel) {
  SourceImage image(800, 10, [](int x, int, int) { return x % 2 * 100; });
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer reduced(1, 1, 4);
    ReduceImage(CacheJob(image, reduced, 1, 1, mode));
    EXPECT_NEAR(reduced.Row(0)[0], 50, 2) << mode;
  }
}

TEST(ReduceImage, KeepsPixelsOutsideItsRectangle) {
  SourceImage image(8, 8);
  for (const int32_t mode : {kFilterRealTime, kFilterHiQual}) {
    GuardedBuffer reduced(6, 6, 4);
    ResampleJob job = CacheJob(image, reduced, 6, 6, mode);
    job.destRect = {1.5f, 2.5f, 3.5f, 3.5f};
    ReduceImage(job);
    for (size_t y = 0; y < 6; ++y) {
      for (size_t x = 0; x < 6; ++x) {
        const bool inside = x >= 1 && x <= 3 && y >= 2 && y <= 3;
        EXPECT_EQ(reduced.Row(y)[4 * x], inside ? 0 : GuardedBuffer::kGuard) << x << ", " << y;
      }
    }
  }
}

TEST(ReduceImage, DrawsNothingFromRectanglesThatMakeNoSense) {
  SourceImage image(8, 8);
  const float huge = 1e30f;
  const RectF bad[] = {{NAN, 0.5f, 7.5f, 7.5f},
                       {7.5f, 0.5f, 0.5f, 7.5f},
                       {0.5f, 0.5f, INFINITY, 7.5f},
                       {-huge, -huge, huge, huge},
                       {-1e9f, 0.5f, 1e9f, 7.5f}};
  for (const int32_t mode : {kFilterRealTime, kFilterHiQual}) {
    for (const RectF& rect : bad) {
      GuardedBuffer reduced(4, 4, 4);
      ResampleJob job = CacheJob(image, reduced, 4, 4, mode);
      job.sourceRect = rect;
      ReduceImage(job);
      const std::vector<uint8_t> bytes = reduced.Packed();
      EXPECT_EQ(std::count(bytes.begin(), bytes.end(), GuardedBuffer::kGuard), 64);
    }
  }
}

}  // namespace
}  // namespace kelto
