// Jobs that no careful caller sends, and what they may cost.
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <random>

#include "resample/resample.h"
#include "tests/resample/buffers.h"
#include "tests/resample/counted_memory.h"

namespace kelto {
namespace {

using test::BytesAllocated;
using test::GuardedBuffer;
using test::MakeJob;
using test::SourceImage;
using test::WholeFrame;

class RandomJobs {
 public:
  explicit RandomJobs(uint32_t seed) : random_(seed) {}

  int32_t Whole(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random_);
  }
  float Real(float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random_);
  }

  /// Mostly near an image, at times far away, and at times no number at all.
  float Coordinate() {
    static const float kOdd[] = {std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::max(),
                                 -std::numeric_limits<float>::max(),
                                 std::numeric_limits<float>::denorm_min(),
                                 2147483648.0f,
                                 -2147483648.0f,
                                 1e18f,
                                 -1e18f,
                                 0.0f};
    switch (Whole(0, 7)) {
      case 0:
        return kOdd[Whole(0, 10)];
      case 1:
        return Real(-1e5f, 1e5f);
      default:
        return Real(-40.0f, 60.0f);
    }
  }
  RectF Rect() { return {Coordinate(), Coordinate(), Coordinate(), Coordinate()}; }

 private:
  std::mt19937 random_;
};

TEST(AnyJob, WritesNothingOutsideTheDestinationAndComesToAnEnd) {
  RandomJobs random(20240607);
  for (int i = 0; i < 2500; ++i) {
    SourceImage image(random.Whole(0, 30), random.Whole(0, 30),
                      [&](int, int, int) { return random.Whole(0, 255); });
    const int32_t width = random.Whole(1, 33);
    const int32_t rows = random.Whole(1, 25);
    const bool field = random.Whole(0, 2) == 0;
    const int32_t entry = random.Whole(0, 2);
    GuardedBuffer dest(width, rows, entry == 0 ? 2 : 4, static_cast<size_t>(random.Whole(0, 9)),
                       random.Whole(0, 1) == 1);
    GuardedBuffer video(random.Whole(1, 40), random.Whole(1, 30), 2, 3, random.Whole(0, 1) == 1);
    ResampleJob job =
        MakeJob(image, random.Rect(), dest, width, field ? 2 * rows : rows, random.Whole(-1, 8));
    if (random.Whole(0, 1) == 1) job.destRect = random.Rect();
    if (random.Whole(0, 3) == 0) {
      job.source.pixels += image.bytes.empty() ? 0 : image.bytes.size() - size_t{4} * image.width;
      job.source.rowBytes = -job.source.rowBytes;
    }
    job.fieldRows = field ? random.Whole(0, 1) : random.Whole(2, 4);
    job.interlaceSelector = random.Whole(0, 3);
    job.chroma = {random.Whole(-2, 5), random.Whole(-2, 5)};
    job.background.selector = random.Whole(-1, 3);
    if (random.Whole(0, 1) == 1) {
      job.background.videoRow0 = video.Pixels();
      job.background.videoRowBytes = video.RowDelta();
      job.background.videoWidth = static_cast<int32_t>(video.RowBytes() / 2);
      job.background.videoHeight = static_cast<int32_t>(video.Rows());
    }
    (entry == 0 ? ResampleTo422 : entry == 1 ? ResampleTo4Byte : ReduceImage)(job);
    dest.ExpectGuardsUntouched();
    ASSERT_FALSE(HasFatalFailure()) << "job " << i;
  }
}

TEST(AnyJob, WithoutAUsableDestinationWritesNothing) {
  SourceImage image(4, 4);
  GuardedBuffer dest(4, 4, 4);
  for (const auto& [width, height] :
       {std::pair(0, 4), std::pair(4, 0), std::pair(-3, 4), std::pair(4, -2147483647)}) {
    ResampleJob job = MakeJob(image, WholeFrame(4, 4), dest, width, height, kFilterCubic);
    ResampleTo422(job);
    ResampleTo4Byte(job);
    ReduceImage(job);
  }
  ResampleJob nowhere = MakeJob(image, WholeFrame(4, 4), dest, 4, 4, kFilterRealTime);
  nowhere.dest.pixels = nullptr;
  ResampleTo422(nowhere);
  ReduceImage(nowhere);
  const std::vector<uint8_t> bytes = dest.Packed();
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), GuardedBuffer::kGuard), 64);
}

TEST(AnyJob, WithoutAnImageShowsTheBackground) {
  for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer dest(4, 4, 2);
    ResampleJob job;
    job.dest = {dest.Pixels(), 4, 4, dest.RowDelta()};
    job.sourceRect = {0.5f, 0.5f, -0.5f, -0.5f};
    job.destRect = WholeFrame(4, 4);
    job.filterMode = mode;
    job.background.selector = 1;
    ResampleTo422(job);
    const std::vector<uint8_t> bytes = dest.Packed();
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0), 32) << mode;
  }
}

/// A view of `extent` times the image's size around its middle.
RectF ViewOf(const SourceImage& image, float extent) {
  const float w = static_cast<float>(image.width), h = static_cast<float>(image.height);
  return {0.5f + w * (1 - extent) / 2, 0.5f + h * (1 - extent) / 2, w * (1 + extent) / 2 - 0.5f,
          h * (1 + extent) / 2 - 0.5f};
}

TEST(ZoomedFarOut, TakesMemoryForRowsOfTheImageOnlyAndLittleTime) {
  SourceImage image(1500, 1000, [](int x, int y, int) { return (x * 7 + y * 13) % 256; });
  GuardedBuffer dest(192, 108, 2);
  for (const float extent : {10.0f, 1e3f, 1e5f, 1e8f}) {
    const auto start = std::chrono::steady_clock::now();
    const size_t before = BytesAllocated();
    ResampleTo422(MakeJob(image, ViewOf(image, extent), dest, 192, 108, kFilterUltraQual));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(BytesAllocated() - before, 16u << 20) << extent;
    EXPECT_LT(taken.count(), 20.0) << extent;
  }
}

TEST(ZoomedFarOut, ShowsThePictureAsASpeckOfItsMeanOverTheBackground) {
  SourceImage image(40, 40, [](int, int, int c) { return c == 0 ? 240 : 128; });
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer dest(9, 9, 2);
    ResampleJob job = MakeJob(image, ViewOf(image, 18.0f), dest, 9, 9, mode);
    job.background.bytes[1] = job.background.bytes[3] = 128;
    job.background.selector = 1;
    ResampleTo422(job);
    for (size_t y = 0; y < 9; ++y) {
      for (size_t x = 0; x < 9; ++x) {
        // Half a pixel wide and high, in the middle of the frame.
        EXPECT_EQ(dest.Row(y)[2 * x], x == 4 && y == 4 ? 60 : 0) << mode;
        EXPECT_EQ(dest.Row(y)[2 * x + 1], 128);
      }
    }
  }
}

TEST(StretchedInOneDirection, StaysWithinBounds) {
  SourceImage image(300, 200, [](int x, int, int) { return x % 256; });
  GuardedBuffer dest(96, 54, 2);
  for (const RectF& view : {RectF{-1e7f, 90.0f, 1e7f, 91.0f}, RectF{90.0f, -1e7f, 91.0f, 1e7f},
                            RectF{-3e4f, 90.0f, 3e4f, 91.0f}, RectF{90.0f, -3e4f, 91.0f, 3e4f}}) {
    const size_t before = BytesAllocated();
    ResampleTo422(MakeJob(image, view, dest, 96, 54, kFilterUltraQual));
    EXPECT_LT(BytesAllocated() - before, 64u << 20);
  }
}

TEST(ALargeMinifiedPicture, TakesOnlyTheIntermediateRowsOfOneOutputRow) {
  SourceImage image(3000, 2000);
  GuardedBuffer dest(960, 540, 2);
  const size_t before = BytesAllocated();
  ResampleTo422(MakeJob(image, WholeFrame(3000, 2000), dest, 960, 540, kFilterHiQual));
  EXPECT_LT(BytesAllocated() - before, 2u << 20) << "all 2000 rows would take 30 MB";
}

}  // namespace
}  // namespace kelto
