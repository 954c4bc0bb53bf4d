// Pictures and guarded destinations that the engine's tests draw between.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "resample/filtered.h"
#include "resample/job.h"
#include "resample/resample.h"

namespace kelto::test {

/// A source image: four bytes a pixel, rows without padding.
struct SourceImage {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> bytes;

  SourceImage(int32_t w, int32_t h)
      : width(w), height(h), bytes(static_cast<size_t>(w) * static_cast<size_t>(h) * 4) {}

  /// Every byte from its column, row and place in the pixel.
  SourceImage(int32_t w, int32_t h, const std::function<double(int, int, int)>& value)
      : SourceImage(w, h) {
    size_t i = 0;
    for (int32_t y = 0; y < h; ++y) {
      for (int32_t x = 0; x < w; ++x) {
        for (int32_t c = 0; c < 4; ++c) {
          bytes[i++] = static_cast<uint8_t>(std::lround(value(x, y, c)));
        }
      }
    }
  }

  PixelBlock Block() { return {bytes.data(), width, height, ptrdiff_t{4} * width}; }
};

/// Rows of pixels with guard bytes between and around them, top-down or bottom-up.
class GuardedBuffer {
 public:
  static constexpr uint8_t kGuard = 0xA7;

  GuardedBuffer(int32_t width, int32_t rows, int32_t bytesPerPixel, size_t padding = 13,
                bool bottomUp = false)
      : rows_(static_cast<size_t>(rows)),
        rowBytes_(static_cast<size_t>(width) * static_cast<size_t>(bytesPerPixel)),
        stride_(rowBytes_ + padding),
        bottomUp_(bottomUp),
        bytes_(stride_ * (rows_ + 2), kGuard) {}

  uint8_t* Row(size_t row) {
    return bytes_.data() + stride_ * (1 + (bottomUp_ ? rows_ - 1 - row : row));
  }
  uint8_t* Pixels() { return Row(0); }
  ptrdiff_t RowDelta() const {
    return bottomUp_ ? -static_cast<ptrdiff_t>(stride_) : static_cast<ptrdiff_t>(stride_);
  }
  size_t Rows() const { return rows_; }
  size_t RowBytes() const { return rowBytes_; }

  /// The pixels, row after row from the top, without padding.
  std::vector<uint8_t> Packed() {
    std::vector<uint8_t> packed;
    for (size_t row = 0; row < rows_; ++row) {
      packed.insert(packed.end(), Row(row), Row(row) + rowBytes_);
    }
    return packed;
  }

  void ExpectGuardsUntouched() {
    std::vector<bool> pixel(bytes_.size(), false);
    for (size_t row = 0; row < rows_; ++row) {
      const size_t start = static_cast<size_t>(Row(row) - bytes_.data());
      std::fill_n(pixel.begin() + static_cast<ptrdiff_t>(start), rowBytes_, true);
    }
    for (size_t i = 0; i < bytes_.size(); ++i) {
      if (!pixel[i]) {
        ASSERT_EQ(bytes_[i], kGuard) << "byte " << i;
      }
    }
  }

 private:
  size_t rows_, rowBytes_, stride_;
  bool bottomUp_;
  std::vector<uint8_t> bytes_;
};

inline RectF WholeFrame(int32_t width, int32_t height) {
  return {0.5f, 0.5f, static_cast<float>(width) - 0.5f, static_cast<float>(height) - 0.5f};
}

/// A job from `source` into a frame of `frameHeight` rows, which `dest` holds all or every second
/// one of.
inline ResampleJob MakeJob(SourceImage& source, const RectF& sourceRect, GuardedBuffer& dest,
                           int32_t width, int32_t frameHeight, int32_t filterMode) {
  ResampleJob job;
  job.source = source.Block();
  job.sourceRect = sourceRect;
  job.dest = {dest.Pixels(), width, frameHeight, dest.RowDelta()};
  job.destRect = WholeFrame(width, frameHeight);
  job.filterMode = filterMode;
  return job;
}

/// The plan of a job whose rectangles nothing has clipped yet.
inline FilteredPlan PlanOf(ResampleJob job, PixelFormat format) {
  EXPECT_TRUE(ClipJob(job));
  return PlanFiltered(job, MakeCanvas(job, format, true), *FrameFilter(job.filterMode),
                      FramePicture(job));
}

/// The largest difference between two byte sequences of one length, and where it is.
struct Difference {
  int most = 0;
  size_t place = 0;
};

inline Difference LargestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  EXPECT_EQ(a.size(), b.size());
  Difference difference;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const int distance = std::abs(a[i] - b[i]);
    if (distance > difference.most) difference = {distance, i};
  }
  return difference;
}

}  // namespace kelto::test
