#include "resample/resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/resample/buffers.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;
using test::WholeFrame;

void ExpectReference(const nlohmann::json& c) {
  SCOPED_TRACE(c["name"].get<std::string>() + ", mode " + c["mode"].dump());
  const bool packed = c["output"] == "422";
  const int32_t width = c["dst_width"], height = c["dst_height"], field = c["field"];
  SourceImage image(c["width"], c["height"]);
  image.bytes = test::Bytes(c["image"]);
  GuardedBuffer dest(width, c["out_rows"], packed ? 2 : 4);
  const nlohmann::json& s = c["src"];
  ResampleJob job =
      MakeJob(image, {s[0], s[1], s[2], s[3]}, dest, width, height, c["mode"].get<int32_t>());
  job.destRect = {c["dst"][0], c["dst"][1], c["dst"][2], c["dst"][3]};
  job.fieldRows = field;
  job.interlaceSelector = field == kAllRows ? 0 : 2;
  job.chroma = {c["chroma_even"], c["chroma_odd"]};
  for (size_t i = 0; i < 4; ++i) job.background.bytes[i] = c["background"][i];
  job.background.selector = c["selector"];
  packed ? ResampleTo422(job) : ResampleTo4Byte(job);

  const test::Difference difference = test::LargestDifference(dest.Packed(), test::Bytes(c["out"]));
  EXPECT_LE(difference.most, c["mode"] == 0 ? 0 : 1) << "byte " << difference.place;
  dest.ExpectGuardsUntouched();
}

TEST(Resample, AgreesWithReferenceResults) {
  for (const nlohmann::json& c : test::Vectors()["resample"]) ExpectReference(c);
}

/// A smooth picture that tells channels, columns and rows apart.
SourceImage Waves(int32_t width, int32_t height) {
  return {width, height, [](int x, int y, int c) {
            return 128 + 60 * std::sin(0.31 * x + c) + 55 * std::cos(0.23 * y - 0.7 * c);
          }};
}

const RectF kViews[] = {{0.5f, 0.5f, 22.5f, 16.5f},      // whole
                        {3.3f, 2.7f, 9.1f, 7.2f},        // magnified
                        {-20.2f, -12.6f, 50.9f, 40.1f},  // minified, edges in view
                        {-2.3f, -1.9f, 8.8f, 9.4f},      // magnified, one corner in view
                        {1.2f, 0.5f, 21.2f, 4.5f}};      // minified across, magnified down

TEST(Resample, KeepsAConstantImageConstantUpToItsEdges) {
  SourceImage image(23, 17, [](int, int, int c) { return 17 + 60 * c; });
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    for (const RectF& view : kViews) {
      GuardedBuffer dest(20, 14, 4);
      ResampleJob job = MakeJob(image, view, dest, 20, 14, mode);
      job.background.selector = 1;
      for (int i = 0; i < 4; ++i) job.background.bytes[i] = static_cast<uint8_t>(17 + 60 * i);
      ResampleTo4Byte(job);
      const std::vector<uint8_t> bytes = dest.Packed();
      for (size_t i = 0; i < bytes.size(); ++i) {
        ASSERT_EQ(bytes[i], 17 + 60 * (i % 4)) << "mode " << mode << " byte " << i;
      }
    }
  }
}

TEST(Resample, DrawsNothingButBackgroundForARectangleEntirelyOutsideTheDestination) {
  SourceImage image = Waves(10, 10);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer dest(12, 8, 2);
    ResampleJob job = MakeJob(image, WholeFrame(10, 10), dest, 12, 8, mode);
    job.destRect = {12.5f, 0.5f, 24.5f, 7.5f};
    ResampleTo422(job);
    const std::vector<uint8_t> bytes = dest.Packed();
    for (size_t i = 0; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], i % 2 == 0 ? 0 : 128);
  }
}

TEST(Resample, WritesOnlyTheEvenRowsOfAFramePackedIntoAFieldInFieldModeZero) {
  SourceImage image = Waves(23, 17);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer frame(20, 14, 2), field(20, 7, 2);
    ResampleTo422(MakeJob(image, kViews[2], frame, 20, 14, mode));
    ResampleJob job = MakeJob(image, kViews[2], field, 20, 14, mode);
    job.fieldRows = kEvenRows;
    job.interlaceSelector = 2;
    ResampleTo422(job);
    for (size_t row = 0; row < 7; ++row) {
      EXPECT_TRUE(std::equal(frame.Row(2 * row), frame.Row(2 * row) + 40, field.Row(row)));
    }
    field.ExpectGuardsUntouched();
  }
}

TEST(Resample, TwoFieldsInterleaveIntoTheProgressiveFrameInEveryFilter) {
  SourceImage image = Waves(23, 17);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    for (const RectF& view : kViews) {
      GuardedBuffer frame(20, 14, 4);
      ResampleTo4Byte(MakeJob(image, view, frame, 20, 14, mode));
      for (const int32_t parity : {kEvenRows, kOddRows}) {
        GuardedBuffer field(20, 7, 4);
        ResampleJob job = MakeJob(image, view, field, 20, 14, mode);
        job.fieldRows = parity;
        job.interlaceSelector = 2;
        ResampleTo4Byte(job);
        for (size_t row = 0; row < 7; ++row) {
          const uint8_t* line = frame.Row(2 * row + static_cast<size_t>(parity));
          ASSERT_TRUE(std::equal(line, line + 80, field.Row(row))) << mode << ", " << row;
        }
      }
    }
  }
}

TEST(Resample, ComputesEveryRowInAnyFieldModeButZeroAndOne) {
  SourceImage image = Waves(23, 17);
  GuardedBuffer expected(20, 14, 2);
  ResampleTo422(MakeJob(image, kViews[1], expected, 20, 14, kFilterCubic));
  for (const int32_t rows : {-1, 3, 100}) {
    GuardedBuffer dest(20, 14, 2);
    ResampleJob job = MakeJob(image, kViews[1], dest, 20, 14, kFilterCubic);
    job.fieldRows = rows;
    ResampleTo422(job);
    EXPECT_EQ(dest.Packed(), expected.Packed());
  }
}

TEST(Resample, PacksEachPixelsOwnLumaWithTheChromaOfItsColumn) {
  SourceImage image = Waves(23, 17);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    for (const RectF& view : kViews) {
      GuardedBuffer whole(21, 14, 4), packed(21, 14, 2);
      ResampleJob job = MakeJob(image, view, whole, 21, 14, mode);
      job.background.selector = 1;
      ResampleTo4Byte(job);
      job.dest.pixels = packed.Pixels();
      job.dest.rowBytes = packed.RowDelta();
      job.chroma = {2, 1};
      ResampleTo422(job);
      for (size_t y = 0; y < 14; ++y) {
        for (size_t x = 0; x < 21; ++x) {
          ASSERT_EQ(packed.Row(y)[2 * x], whole.Row(y)[4 * x]);
          ASSERT_EQ(packed.Row(y)[2 * x + 1], whole.Row(y)[4 * x + (x % 2 == 0 ? 2 : 1)]);
        }
      }
      packed.ExpectGuardsUntouched();
    }
  }
}

TEST(Resample, HoldsChromaBytesThatNoPixelHasInsideThePixel) {
  SourceImage image = Waves(23, 17);
  for (const int32_t mode : {kFilterRealTime, kFilterTriangle}) {
    GuardedBuffer expected(20, 14, 2), dest(20, 14, 2);
    ResampleJob job = MakeJob(image, kViews[0], expected, 20, 14, mode);
    job.chroma = {3, 0};
    ResampleTo422(job);
    job.dest.pixels = dest.Pixels();
    job.chroma = {9, -4};
    ResampleTo422(job);
    EXPECT_EQ(dest.Packed(), expected.Packed());
  }
}

TEST(Resample, FitsOddWidthsWithoutTouchingWhatFollowsARow) {
  SourceImage image = Waves(23, 17);
  for (const int32_t width : {2, 3, 5, 17}) {
    GuardedBuffer dest(width, 9, 2, 1), wider(width + 1, 9, 2, 1);
    const float step = 15.0f / static_cast<float>(width);
    const RectF view = {0.9f, 1.1f, 0.9f + 15.0f - 1.0f, 12.0f};
    ResampleTo422(MakeJob(image, view, dest, width, 9, kFilterCatmull));
    RectF further = view;
    further.right += step;
    ResampleTo422(MakeJob(image, further, wider, width + 1, 9, kFilterCatmull));
    dest.ExpectGuardsUntouched();
    for (size_t y = 0; y < 9; ++y) {
      for (size_t i = 0; i < dest.RowBytes(); ++i) {
        EXPECT_NEAR(dest.Row(y)[i], wider.Row(y)[i], 1) << "width " << width << " byte " << i;
      }
    }
  }
}

TEST(Resample, TouchesOnlyThePixelsOfPaddedAndBottomUpFrames) {
  SourceImage image = Waves(23, 17);
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer plain(20, 14, 2, 0), padded(20, 14, 2, 37), bottomUp(20, 14, 2, 37, true);
    for (GuardedBuffer* dest : {&plain, &padded, &bottomUp}) {
      ResampleTo422(MakeJob(image, kViews[3], *dest, 20, 14, mode));
      dest->ExpectGuardsUntouched();
      EXPECT_EQ(dest->Packed(), plain.Packed());
    }
  }
}

TEST(Resample, ReadsBottomUpSources) {
  SourceImage image = Waves(23, 17), flipped(23, 17);
  const size_t row = size_t{23} * 4;
  for (size_t y = 0; y < 17; ++y) {
    std::copy_n(image.bytes.data() + y * row, row, flipped.bytes.data() + (16 - y) * row);
  }
  for (const int32_t mode : {kFilterRealTime, kFilterHiQual}) {
    GuardedBuffer expected(20, 14, 2), dest(20, 14, 2);
    ResampleTo422(MakeJob(image, kViews[2], expected, 20, 14, mode));
    ResampleJob job = MakeJob(flipped, kViews[2], dest, 20, 14, mode);
    job.source.pixels += 16 * row;
    job.source.rowBytes = -job.source.rowBytes;
    ResampleTo422(job);
    EXPECT_EQ(dest.Packed(), expected.Packed());
  }
}

TEST(Resample, MixesPartlyCoveredEdgesWithTheBackground) {
  SourceImage image(8, 8, [](int, int, int) { return 200; });
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer dest(16, 16, 4);
    ResampleJob job = MakeJob(image, {-3.25f, -3.0f, 11.75f, 12.0f}, dest, 16, 16, mode);
    job.background.selector = 1;
    std::fill_n(job.background.bytes, 4, uint8_t{40});
    ResampleTo4Byte(job);
    const auto first = [&](size_t x, size_t y) { return dest.Row(y)[4 * x]; };
    EXPECT_EQ(first(2, 6), 40);
    EXPECT_EQ(first(3, 6), 80) << "a quarter of column 3";
    EXPECT_EQ(first(4, 6), 200);
    EXPECT_EQ(first(11, 6), 160) << "three quarters of column 11";
    EXPECT_EQ(first(6, 3), 120) << "half of row 3";
    EXPECT_EQ(first(3, 3), 60) << "an eighth of the corner";
  }
}

TEST(Resample, RoundsTiesToEvenAndSaturates) {
  // The triangle at positions halfway between samples: exact means of neighbouring columns.
  SourceImage pairs(3, 3, [](int x, int, int c) { return x == 1 ? 11 + 2 * c : 10; });
  GuardedBuffer means(2, 2, 4);
  ResampleTo4Byte(MakeJob(pairs, {1.5f, 1.5f, 2.5f, 2.5f}, means, 2, 2, kFilterTriangle));
  EXPECT_EQ(means.Row(0)[0], 10) << "10.5";
  EXPECT_EQ(means.Row(0)[1], 12) << "11.5";

  SourceImage step(40, 4, [](int x, int, int) { return x < 20 ? 0 : 255; });
  GuardedBuffer rung(117, 4, 4);
  ResampleTo4Byte(MakeJob(step, WholeFrame(40, 4), rung, 117, 4, kFilterHiQual));
  int lowest = 255, highest = 0;
  for (size_t x = 0; x < 117; ++x) {
    const int value = rung.Row(1)[4 * x];
    EXPECT_TRUE(x < 54 ? value < 40 : x >= 64 ? value > 215 : true) << x << ": " << value;
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  EXPECT_EQ(lowest, 0);
  EXPECT_EQ(highest, 255);
}

TEST(Resample, DrawsIntoPartOfAFrameAndFillsAroundIt) {
  SourceImage image(8, 6, [](int, int, int) { return 99; });
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer dest(20, 14, 4);
    ResampleJob job = MakeJob(image, WholeFrame(8, 6), dest, 20, 14, mode);
    job.destRect = {5.5f, 3.5f, 12.5f, 8.5f};
    job.background.selector = 1;
    ResampleTo4Byte(job);
    for (size_t y = 0; y < 14; ++y) {
      for (size_t x = 0; x < 20; ++x) {
        const bool inside = x >= 5 && x <= 12 && y >= 3 && y <= 8;
        ASSERT_EQ(dest.Row(y)[4 * x], inside ? 99 : 0) << x << ", " << y << " mode " << mode;
      }
    }
  }
}

TEST(Resample, IsTheSameOnEveryRun) {
  SourceImage image = Waves(23, 17);
  GuardedBuffer first(20, 14, 2), second(20, 14, 2);
  ResampleTo422(MakeJob(image, kViews[2], first, 20, 14, kFilterUltraQual));
  ResampleTo422(MakeJob(image, kViews[1], second, 20, 14, kFilterHiQual));
  ResampleTo422(MakeJob(image, kViews[2], second, 20, 14, kFilterUltraQual));
  EXPECT_EQ(first.Packed(), second.Packed());
}

}  // namespace
}  // namespace kelto
