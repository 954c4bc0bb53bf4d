#include "resample/realtime.h"

#include <gtest/gtest.h>

#include <cmath>

#include "resample/resample.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;
using test::WholeFrame;

/// Luma tells the column, the other bytes the row and themselves.
SourceImage PlaceImage(int32_t width, int32_t height) {
  return {width, height, [](int x, int y, int c) { return c == 0 ? x + 1 : 60 * c + y; }};
}

TEST(RealTime, InterleavesTheChromaOfEvenAndOddColumns) {
  SourceImage image = PlaceImage(6, 4);
  GuardedBuffer buffer(6, 4, 2);
  ResampleJob job = MakeJob(image, WholeFrame(6, 4), buffer, 6, 4, kFilterRealTime);
  ResampleTo422(job);
  for (size_t y = 0; y < 4; ++y) {
    for (size_t x = 0; x < 6; ++x) {
      EXPECT_EQ(buffer.Row(y)[2 * x], x + 1);
      EXPECT_EQ(buffer.Row(y)[2 * x + 1], (x % 2 == 0 ? 60 : 120) + y);
    }
  }
  job.chroma = {2, 1};
  ResampleTo422(job);
  EXPECT_EQ(buffer.Row(0)[1], 120);
  EXPECT_EQ(buffer.Row(0)[3], 60);
}

TEST(RealTime, TakesChromaByTheDestinationsColumnNotTheSources) {
  SourceImage image = PlaceImage(8, 2);
  GuardedBuffer buffer(4, 2, 2);
  ResampleTo422(MakeJob(image, {1.5f, 0.5f, 4.5f, 1.5f}, buffer, 4, 2, kFilterRealTime));
  EXPECT_EQ(buffer.Row(0)[0], 2) << "source column 1";
  EXPECT_EQ(buffer.Row(0)[1], 60) << "destination column 0";
}

TEST(RealTime, StartsWithTheFractionOfTheExactStartPosition) {
  SourceImage image = PlaceImage(40, 4);
  GuardedBuffer buffer(8, 4, 2);
  // Positions 3.3, 4.7, 6.1, 7.5, 8.9, ...
  const RectF source = {3.3f, 0.5f, 3.3f + 8 * 1.4f - 1, 3.5f};
  ResampleTo422(MakeJob(image, source, buffer, 8, 4, kFilterRealTime));
  for (size_t x = 0; x < 8; ++x) {
    EXPECT_EQ(buffer.Row(0)[2 * x], std::floor(3.3 + 1.4 * static_cast<double>(x)) + 1) << x;
  }
}

TEST(RealTime, MovesOnOnlyWhenTheFractionExceedsOne) {
  SourceImage image = PlaceImage(40, 4);
  GuardedBuffer buffer(8, 4, 2);
  // Positions 0.5, 2, 3.5, 5, ...: the fraction reaches 1 at every second column.
  ResampleTo422(MakeJob(image, {0.5f, 0.5f, 11.5f, 3.5f}, buffer, 8, 4, kFilterRealTime));
  const int expected[] = {0, 1, 3, 4, 6, 7, 9, 10};
  for (size_t x = 0; x < 8; ++x) EXPECT_EQ(buffer.Row(0)[2 * x], expected[x] + 1) << x;
}

TEST(RealTime, DrawsThePixelsWhoseCentresLieInThePicture) {
  SourceImage image(8, 8, [](int, int, int) { return 200; });
  for (const float shift : {0.1f, 0.4f, 0.6f, 0.9f}) {
    GuardedBuffer buffer(16, 16, 4);
    // The image lies `shift` right of and below pixel 4 and ends as far into pixel 12.
    const float start = -3.5f - shift;
    ResampleTo4Byte(
        MakeJob(image, {start, start, start + 15, start + 15}, buffer, 16, 16, kFilterRealTime));
    const size_t first = shift < 0.5f ? 4 : 5, end = first + 8;
    for (size_t y = 0; y < 16; ++y) {
      for (size_t x = 0; x < 16; ++x) {
        const bool inside = x >= first && x < end && y >= first && y < end;
        EXPECT_EQ(buffer.Row(y)[4 * x], inside ? 200 : 0) << x << ", " << y << " at " << shift;
      }
    }
  }
}

TEST(RealTime, HoldsTheSampleInsideTheImage) {
  SourceImage image = PlaceImage(4, 4);
  GuardedBuffer buffer(64, 64, 2);
  // Magnified by 16: sampling positions run half a pixel past both of the image's ends.
  ResampleTo422(MakeJob(image, WholeFrame(4, 4), buffer, 64, 64, kFilterRealTime));
  EXPECT_EQ(buffer.Row(0)[0], 1);
  EXPECT_EQ(buffer.Row(63)[126], 4);
  EXPECT_EQ(buffer.Row(63)[127], 123);
}

TEST(RealTime, IsTakenForEveryFilterModeOutsideOneToSeven) {
  SourceImage image = PlaceImage(12, 9);
  GuardedBuffer expected(8, 6, 2);
  const RectF source = {0.7f, 0.9f, 9.1f, 7.3f};
  ResampleTo422(MakeJob(image, source, expected, 8, 6, kFilterRealTime));
  for (const int32_t mode : {-1, 8, 1000, -2147483647}) {
    GuardedBuffer buffer(8, 6, 2);
    ResampleTo422(MakeJob(image, source, buffer, 8, 6, mode));
    EXPECT_EQ(buffer.Packed(), expected.Packed()) << mode;
  }
}

TEST(RealTime, TwoFieldsInterleaveIntoTheFrame) {
  SourceImage image = PlaceImage(20, 60);
  for (const float scale : {0.4f, 1.0f, 1.7f, 3.0f}) {
    const RectF source = {-1.2f, -2.3f, -1.2f + 16 * scale - 1, -2.3f + 12 * scale - 1};
    GuardedBuffer frame(16, 12, 2);
    ResampleTo422(MakeJob(image, source, frame, 16, 12, kFilterRealTime));
    for (const int32_t parity : {kEvenRows, kOddRows}) {
      GuardedBuffer field(16, 6, 2);
      ResampleJob job = MakeJob(image, source, field, 16, 12, kFilterRealTime);
      job.fieldRows = parity;
      job.interlaceSelector = 2;
      ResampleTo422(job);
      for (size_t row = 0; row < 6; ++row) {
        const uint8_t* line = frame.Row(2 * row + static_cast<size_t>(parity));
        EXPECT_TRUE(std::equal(line, line + 32, field.Row(row))) << row << " at " << scale;
      }
      field.ExpectGuardsUntouched();
    }
  }
}

TEST(RealTime, HalvesRowsOnlyWhenTheInterlaceSelectorIsTwo) {
  SourceImage image(4, 12, [](int, int y, int) { return 10 * y; });
  GuardedBuffer field(4, 6, 2);
  ResampleJob job = MakeJob(image, WholeFrame(4, 12), field, 4, 12, kFilterRealTime);
  job.fieldRows = kOddRows;
  for (const int32_t selector : {0, 1, 2}) {
    job.interlaceSelector = selector;
    ResampleTo422(job);
    for (size_t row = 0; row < 6; ++row) {
      EXPECT_EQ(field.Row(row)[0], 10 * (selector == 2 ? 2 * row + 1 : row)) << selector;
    }
    field.ExpectGuardsUntouched();
  }
}

}  // namespace
}  // namespace kelto
