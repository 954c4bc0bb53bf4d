#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "resample/resample.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

RectF RectFrom(const nlohmann::json& sides) { return {sides[0], sides[1], sides[2], sides[3]}; }

ResampleJob JobOf(int32_t width, int32_t height, const RectF& source, const RectF& dest) {
  ResampleJob job;
  job.dest.width = width;
  job.dest.height = height;
  job.sourceRect = source;
  job.destRect = dest;
  return job;
}

void ExpectNear(const RectF& rect, const RectF& expected) {
  EXPECT_NEAR(rect.left, expected.left, 1e-3);
  EXPECT_NEAR(rect.top, expected.top, 1e-3);
  EXPECT_NEAR(rect.right, expected.right, 1e-3);
  EXPECT_NEAR(rect.bottom, expected.bottom, 1e-3);
}

TEST(ClipJob, AgreesWithReferenceResults) {
  for (const nlohmann::json& c : test::Vectors()["clip"]) {
    SCOPED_TRACE(c.dump());
    ResampleJob job = JobOf(c["width"], c["height"], RectFrom(c["src"]), RectFrom(c["dst"]));
    EXPECT_EQ(ClipJob(job), c["draws"].get<bool>());
    ExpectNear(job.sourceRect, RectFrom(c["src_out"]));
    ExpectNear(job.destRect, RectFrom(c["dst_out"]));
    ExpectNear(job.coverage, RectFrom(c["coverage"]));
  }
}

TEST(ClipJob, LeavesARectangleInsideTheFrameAsItIs) {
  const RectF source = {2.25f, 3.5f, 9.75f, 8.0f};
  const RectF dest = {0.5f, 1.25f, 11.5f, 6.5f};
  ResampleJob job = JobOf(12, 8, source, dest);
  EXPECT_TRUE(ClipJob(job));
  ExpectNear(job.sourceRect, source);
  ExpectNear(job.destRect, dest);
  ExpectNear(job.coverage, {0.0f, 0.0f, 1.0f, 1.0f});
}

TEST(ClipJob, KeepsTheScaleOfARectangleCutOnEverySide) {
  ResampleJob job = JobOf(20, 20, {1.0f, 1.0f, 40.0f, 30.0f}, {-3.2f, -5.1f, 33.0f, 28.7f});
  const float before = (1 + 40.0f - 1.0f) / (1 + 33.0f + 3.2f);
  ASSERT_TRUE(ClipJob(job));
  const float after = (1 + job.sourceRect.right - job.sourceRect.left) /
                      (1 + job.destRect.right - job.destRect.left);
  EXPECT_NEAR(after, before, 1e-5);
}

TEST(ClipJob, ReturnsFalseForARectangleEntirelyOutsideTheDestination) {
  const RectF source = {0.5f, 0.5f, 9.5f, 9.5f};
  const RectF outside[] = {{-30.5f, 0.5f, -10.5f, 9.5f},
                           {20.5f, 0.5f, 40.5f, 9.5f},
                           {0.5f, -30.5f, 9.5f, -10.5f},
                           {0.5f, 20.5f, 9.5f, 40.5f}};
  for (const RectF& dest : outside) {
    ResampleJob job = JobOf(10, 10, source, dest);
    EXPECT_FALSE(ClipJob(job)) << dest.left << ", " << dest.top;
  }
}

TEST(ClipJob, ReturnsFalseForRectanglesThatAreNoRectangles) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  const RectF whole = {0.5f, 0.5f, 9.5f, 9.5f};
  const RectF bad[] = {{nan, 0.5f, 9.5f, 9.5f},
                       {0.5f, 0.5f, 9.5f, nan},
                       {-infinity, 0.5f, 9.5f, 9.5f},
                       {9.5f, 0.5f, 0.5f, 9.5f},
                       {4.5f, 0.5f, 4.5f, 9.5f}};
  for (const RectF& rect : bad) {
    ResampleJob dest = JobOf(10, 10, whole, rect);
    EXPECT_FALSE(ClipJob(dest)) << rect.left << ", " << rect.bottom;
  }
  ResampleJob source = JobOf(10, 10, {0.5f, nan, 9.5f, 9.5f}, whole);
  EXPECT_FALSE(ClipJob(source));
}

}  // namespace
}  // namespace kelto
