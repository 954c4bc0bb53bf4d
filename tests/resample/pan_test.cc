// How steadily a slow sub-pixel pan moves: the centroid of a blob, frame after frame.
#include <gtest/gtest.h>

#include <cmath>

#include "resample/resample.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;

constexpr int32_t kWidth = 68, kHeight = 60;
constexpr double kBaseLuma = 20.0, kBlobLuma = 215.0;

/// A Gaussian blob whose deviation is 6 destination pixels at `scale`, with room around it.
SourceImage Blob(double scale) {
  const auto width = static_cast<int32_t>(kWidth * scale) + 80;
  const auto height = static_cast<int32_t>(kHeight * scale) + 80;
  const double deviation = 6.0 * scale;
  return {width, height, [=](int x, int y, int c) {
            const double dx = x + 0.5 - width / 2.0, dy = y + 0.5 - height / 2.0;
            const double squared = dx * dx + dy * dy;
            return c > 0 ? 128.0
                         : kBaseLuma + kBlobLuma * std::exp(-squared / (2 * deviation * deviation));
          }};
}

struct Point {
  double x = 0.0, y = 0.0;
};

Point Centroid(GuardedBuffer& frame) {
  Point sum;
  double mass = 0.0;
  for (size_t y = 0; y < frame.Rows(); ++y) {
    for (size_t x = 0; x < static_cast<size_t>(kWidth); ++x) {
      const double luma = frame.Row(y)[2 * x] - kBaseLuma;
      mass += luma;
      sum.x += luma * static_cast<double>(x);
      sum.y += luma * static_cast<double>(y);
    }
  }
  return {sum.x / mass, sum.y / mass};
}

/// Steps of the blob towards the top left corner.
struct Motion {
  double smallestStep = 1e9;
  double jitterX = 0.0, jitterY = 0.0;  ///< standard deviation of the second difference
};

double Deviation(const std::vector<double>& values) {
  double mean = 0.0, squares = 0.0;
  for (const double value : values) mean += value / static_cast<double>(values.size());
  for (const double value : values) squares += (value - mean) * (value - mean);
  return std::sqrt(squares / static_cast<double>(values.size()));
}

Motion Pan(double scale, int32_t mode) {
  constexpr int kFrames = 80, kMiddle = kFrames / 2;
  const double stepX = 0.06 * scale, stepY = 0.042 * scale;
  SourceImage image = Blob(scale);
  GuardedBuffer frame(kWidth, kHeight, 2);
  std::vector<Point> places;
  for (int i = 0; i < kFrames; ++i) {
    const double width = kWidth * scale - 1, height = kHeight * scale - 1;
    const double left = (image.width - width) / 2 + (i - kMiddle) * stepX;
    const double top = (image.height - height) / 2 + (i - kMiddle) * stepY;
    const RectF view = {static_cast<float>(left), static_cast<float>(top),
                        static_cast<float>(left + width), static_cast<float>(top + height)};
    ResampleTo422(MakeJob(image, view, frame, kWidth, kHeight, mode));
    places.push_back(Centroid(frame));
  }
  Motion motion;
  std::vector<double> secondX, secondY;
  for (size_t i = 1; i < places.size(); ++i) {
    motion.smallestStep = std::min(
        {motion.smallestStep, places[i - 1].x - places[i].x, places[i - 1].y - places[i].y});
    if (i < 2) continue;
    secondX.push_back(places[i].x - 2 * places[i - 1].x + places[i - 2].x);
    secondY.push_back(places[i].y - 2 * places[i - 1].y + places[i - 2].y);
  }
  motion.jitterX = Deviation(secondX);
  motion.jitterY = Deviation(secondY);
  return motion;
}

void ExpectSteady(double scale, int32_t mode, double mostJitter) {
  SCOPED_TRACE("scale " + std::to_string(scale) + ", mode " + std::to_string(mode));
  const Motion motion = Pan(scale, mode);
  EXPECT_GT(motion.smallestStep, 0.0);
  EXPECT_LT(motion.jitterX, mostJitter);
  EXPECT_LT(motion.jitterY, mostJitter);
}

constexpr double kFine = 0.006, kFair = 0.02;

TEST(SlowPan, OfAMinifiedBlobNeverStepsBackAndIsSteadyInEveryFilter) {
  for (const int32_t mode : {kFilterCatmull, kFilterHiQual, kFilterUltraQual}) {
    ExpectSteady(3.125, mode, kFine);
  }
  for (const int32_t mode : {kFilterTriangle, kFilterQuadratic, kFilterCubic, kFilterGaussian}) {
    ExpectSteady(3.125, mode, kFair);
  }
}

TEST(SlowPan, OfAMagnifiedBlobNeverStepsBackAndIsSteadyWhereTheTapsHoldTheKernel) {
  for (const double scale : {0.4, 2.0 / 3.0, 0.9}) {
    for (const int32_t mode : {kFilterCatmull, kFilterHiQual, kFilterUltraQual}) {
      ExpectSteady(scale, mode, kFine);
    }
    for (const int32_t mode : {kFilterTriangle, kFilterCubic}) ExpectSteady(scale, mode, kFair);
  }
}

TEST(SlowPan, MagnifiedByKernelsThatWholeNumberedTapsCutShortStillNeverStepsBack) {
  // Quadratic and gaussian lose their outermost tap at half of all positions.
  for (const int32_t mode : {kFilterQuadratic, kFilterGaussian}) ExpectSteady(0.4, mode, 0.05);
}

TEST(SlowPan, AtScaleOneDoesNotHopBetweenTheWeightFormulas) {
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    ExpectSteady(1.0, mode, 0.06);
  }
}

}  // namespace
}  // namespace kelto
