#include "resample/geometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "resample/resample.h"
#include "tests/resample/buffers.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::WholeFrame;

Picture PictureOf(int32_t imageWidth, int32_t imageHeight, const RectF& source, int32_t frameWidth,
                  int32_t frameHeight) {
  static uint8_t pixel[4];
  ResampleJob job;
  job.source = {pixel, imageWidth, imageHeight, 0};
  job.dest = {pixel, frameWidth, frameHeight, 0};
  job.sourceRect = source;
  job.destRect = WholeFrame(frameWidth, frameHeight);
  return ClipJob(job) ? FramePicture(job) : Picture{};
}

float Uncovered(const PictureSpan& span) { return 1.0f - span.Coverage(span.pixels.first); }
float Covered(const PictureSpan& span) { return span.Coverage(span.pixels.end - 1); }

/// 0 and 1 are the same place: the edge between two pixels.
void ExpectCoverage(float actual, float expected) {
  const float distance = std::abs(actual - expected);
  EXPECT_LT(std::min(distance, 1.0f - distance), 1e-3f) << actual << " against " << expected;
}

TEST(FramePicture, CoversEdgePixelsAsReferenceResultsSay) {
  for (const nlohmann::json& c : test::Vectors()["resample"]) {
    if (!c.contains("coverage")) continue;
    SCOPED_TRACE(c["name"].get<std::string>());
    const nlohmann::json& s = c["src"];
    const Picture picture = PictureOf(c["width"], c["height"], {s[0], s[1], s[2], s[3]},
                                      c["dst_width"], c["dst_height"]);
    if (picture.Empty()) {
      EXPECT_EQ(c["name"], "wholly outside");
      continue;
    }
    ExpectCoverage(Uncovered(picture.columns.span), c["coverage"][0]);
    ExpectCoverage(Uncovered(picture.rows.span), c["coverage"][1]);
    ExpectCoverage(Covered(picture.columns.span), c["coverage"][2]);
    ExpectCoverage(Covered(picture.rows.span), c["coverage"][3]);
  }
}

TEST(FramePicture, EndsWhereTheImageEnds) {
  // Columns -4 .. 11 of an 8 pixel image in 16 columns: the image shows in columns 4 .. 11.
  const Picture picture = PictureOf(8, 8, {-3.5f, 0.5f, 11.5f, 7.5f}, 16, 8);
  EXPECT_EQ(picture.columns.span.pixels.first, 4);
  EXPECT_EQ(picture.columns.span.pixels.end, 12);
  EXPECT_EQ(picture.columns.map.scale, 1.0f);
  EXPECT_EQ(picture.rows.span.pixels.first, 0);
  EXPECT_EQ(picture.rows.span.pixels.end, 8);
}

TEST(FramePicture, CoversAPixelInPartWhereTheImageEndsInsideIt) {
  const Picture picture = PictureOf(8, 8, {-3.25f, 0.5f, 11.75f, 7.5f}, 16, 8);
  const PictureSpan& span = picture.columns.span;
  EXPECT_EQ(span.pixels.first, 3);
  EXPECT_EQ(span.pixels.end, 12);
  EXPECT_FLOAT_EQ(span.Coverage(3), 0.25f);
  EXPECT_FLOAT_EQ(span.Coverage(11), 0.75f);
  EXPECT_EQ(span.Coverage(4), 1.0f);
  EXPECT_EQ(span.Whole().first, 4);
  EXPECT_EQ(span.Whole().end, 11);
  EXPECT_EQ(span.Centres().first, 4);
  EXPECT_EQ(span.Centres().end, 12);
}

TEST(PictureSpan, AnEdgeThroughAPixelsCentreTakesThePixelInAtItsStartOnly) {
  const PictureSpan before = {{0, 4}, 0.0, 3.5}, after = {{3, 8}, 3.5, 8.0};
  EXPECT_EQ(before.Centres().end, 3);
  EXPECT_EQ(after.Centres().first, 3) << "of two pictures side by side one has the pixel";
}

TEST(FramePicture, NarrowerThanAPixelCoversPartOfOne) {
  const Picture picture = PictureOf(2, 2, {-79.5f, -79.5f, 79.5f, 79.5f}, 16, 16);
  const PictureSpan& span = picture.columns.span;
  ASSERT_EQ(span.pixels.end - span.pixels.first, 1);
  EXPECT_NEAR(span.Coverage(span.pixels.first), 0.2f, 1e-5f);
  EXPECT_TRUE(span.Whole().Empty());
}

TEST(FramePicture, IsEmptyWhenTheImageIsOutOfView) {
  EXPECT_TRUE(PictureOf(8, 8, {20.5f, 0.5f, 27.5f, 7.5f}, 8, 8).Empty());
  EXPECT_TRUE(PictureOf(8, 8, {0.5f, -27.5f, 7.5f, -20.5f}, 8, 8).Empty());
}

TEST(FramePicture, IsEmptyWithoutAnImage) {
  EXPECT_TRUE(PictureOf(0, 0, {0.5f, 0.5f, 7.5f, 7.5f}, 8, 8).Empty());
  EXPECT_TRUE(PictureOf(8, -1, {0.5f, 0.5f, 7.5f, 7.5f}, 8, 8).Empty());
}

TEST(FramePicture, ReachesTheFramesEdgeOnASideThatTheFrameCuts) {
  uint8_t pixel[4];
  ResampleJob job;
  job.source = {pixel, 10, 10, 0};
  job.dest = {pixel, 32, 32, 0};
  job.sourceRect = WholeFrame(10, 10);
  job.destRect = {-9.5f, -4.5f, 50.5f, 55.5f};  // magnified: the last source pixel is cut
  ASSERT_TRUE(ClipJob(job));
  ASSERT_LT(job.destRect.right, 31.0f) << "the clip falls short of the last column";
  const Picture picture = FramePicture(job);
  for (const PictureAxis* axis : {&picture.columns, &picture.rows}) {
    EXPECT_EQ(axis->span.pixels.first, 0);
    EXPECT_EQ(axis->span.pixels.end, 32);
    EXPECT_EQ(axis->span.Whole().end, 32);
  }
}

TEST(FramePicture, KeepsScaleOneThroughAPanWhoseCoordinatesRound) {
  for (int step = 0; step < 1000; ++step) {
    const float left = 1500.5f + 0.0123f * static_cast<float>(step);
    const Picture picture =
        PictureOf(4000, 3000, {left, left, left + 719.0f, left + 485.0f}, 720, 486);
    ASSERT_EQ(picture.columns.map.scale, 1.0f) << step;
    ASSERT_EQ(picture.rows.map.scale, 1.0f) << step;
  }
}

TEST(ReductionPicture, SamplesTheSourcesStartAtTheFirstPixelWhateverItsFraction) {
  uint8_t pixel[4];
  ResampleJob job;
  job.source = {pixel, 40, 30, 0};
  job.dest = {pixel, 18, 13, 0};
  job.sourceRect = WholeFrame(40, 30);
  job.destRect = {0.0f, 0.0f, 17.5f, 12.5f};
  const Picture picture = ReductionPicture(job);
  EXPECT_EQ(picture.columns.map.At(0), 0.5f);
  EXPECT_FLOAT_EQ(picture.columns.map.scale, 40.0f / 18.5f);
  EXPECT_EQ(picture.columns.span.pixels.end, 18);
  EXPECT_EQ(picture.rows.span.pixels.end, 13);
}

TEST(ReductionPicture, ReachesAnImagesSizeBeyondTheImageAtTheMost) {
  uint8_t pixel[4];
  ResampleJob job;
  job.source = {pixel, 40, 30, 0};
  job.dest = {pixel, 20, 15, 0};
  job.destRect = WholeFrame(20, 15);
  const auto isEmpty = [&](const RectF& source) {
    job.sourceRect = source;
    return ReductionPicture(job).Empty();
  };
  EXPECT_FALSE(isEmpty({-40.0f, -30.0f, 80.0f, 60.0f}));
  EXPECT_TRUE(isEmpty({-40.5f, 0.5f, 39.5f, 29.5f}));
  EXPECT_TRUE(isEmpty({0.5f, -30.5f, 39.5f, 29.5f}));
  EXPECT_TRUE(isEmpty({0.5f, 0.5f, 80.5f, 29.5f}));
  EXPECT_TRUE(isEmpty({0.5f, 0.5f, 39.5f, 60.5f}));
}

}  // namespace
}  // namespace kelto
