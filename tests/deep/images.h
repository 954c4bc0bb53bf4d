// Deep pictures and frames that the deep engine's tests draw between.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "deep/engine.h"
#include "deep/pixel.h"

namespace kelto::test {

using PixelAt = std::function<DeepPixel(int32_t, int32_t)>;

inline DeepPicture MakePicture(int32_t width, int32_t height, DeepSample sample, bool hasAlpha,
                               const PixelAt& pixel) {
  DeepPicture picture(width, height, sample, hasAlpha);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) WritePixel(picture.view(), x, y, pixel(x, y));
  }
  return picture;
}

/// The rectangle of a whole image or frame.
inline RectF WholeOf(int32_t width, int32_t height) {
  return {0.5f, 0.5f, static_cast<float>(width) - 0.5f, static_cast<float>(height) - 0.5f};
}

/// Draws `view` of a picture over a whole frame.
inline DeepJob MakeDeepJob(const RectF& view, int32_t width, int32_t height, int32_t mode) {
  DeepJob job;
  job.sourceRect = view;
  job.targetRect = WholeOf(width, height);
  job.frame = {width, height};
  job.filterMode = mode;
  return job;
}

inline DeepPicture RenderedFrame(const DeepJob& job, const DeepPicture& picture, DeepSample sample,
                                 bool hasAlpha = true) {
  const bool field = job.fieldRows == kEvenRows || job.fieldRows == kOddRows;
  DeepPicture frame(job.frame.width, field ? job.frame.height / 2 : job.frame.height, sample,
                    hasAlpha);
  RenderDeep(job, picture.view(), frame.view());
  return frame;
}

/// The largest difference of two frames' samples, full scale 1.
inline double LargestDifference(const DeepPicture& a, const DeepPicture& b) {
  double largest = 0.0;
  for (int32_t y = 0; y < a.height(); ++y) {
    for (int32_t x = 0; x < a.width(); ++x) {
      const DeepPixel p = ReadPixel(a.view(), x, y), q = ReadPixel(b.view(), x, y);
      for (size_t c = 0; c < 4; ++c) largest = std::max(largest, std::abs(p[c] - q[c]));
    }
  }
  return largest;
}

/// Whether all pixels of two frames are the same to the bit.
inline bool SameBits(const DeepPicture& a, const DeepPicture& b) {
  const size_t bytes = PixelBytes(a.sample()) * static_cast<size_t>(a.width());
  for (int32_t y = 0; y < a.height(); ++y) {
    if (std::memcmp(a.view().Row<uint8_t>(y), b.view().Row<uint8_t>(y), bytes) != 0) return false;
  }
  return true;
}

/// Pictures and views at random, the same on every run.
class RandomDeep {
 public:
  explicit RandomDeep(uint32_t seed) : random_(seed) {}
  int32_t Whole(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random_);
  }
  double Real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  /// Noise, stripes of full contrast or a slope.
  DeepPicture Picture(DeepSample sample, bool hasAlpha, int32_t most = 150) {
    const int32_t kind = Whole(0, 2), period = Whole(1, 9);
    return MakePicture(Whole(1, most), Whole(1, most), sample, hasAlpha, [&](int32_t x, int32_t y) {
      const auto value = [&](int32_t c) {
        if (kind == 0) return Real(0.0, 1.0);
        if (kind == 1) return (x / period + y / period + c) % 2 * 1.0;
        return (x * 3 + y * 5 + c * 60) % 256 / 255.0;
      };
      const double alpha = hasAlpha ? value(3) : 1.0;
      return DeepPixel{value(0) * alpha, value(1) * alpha, value(2) * alpha, alpha};
    });
  }
  /// Picture pixels a frame pixel: mostly 1/6 to 6, now and then up to 30.
  double Scale() { return std::exp(Whole(0, 4) == 0 ? Real(1.8, 3.4) : Real(-1.8, 1.8)); }
  /// A view inside the picture or across its edges.
  RectF View(const DeepPicture& picture, int32_t width, int32_t height) {
    const double scaleX = Scale(), scaleY = Whole(0, 2) == 0 ? Scale() : scaleX;
    const double w = width * scaleX, h = height * scaleY;
    const double x = Real(-0.7 * w, picture.width() - 0.3 * w);
    const double y = Real(-0.7 * h, picture.height() - 0.3 * h);
    return {static_cast<float>(x + 0.5), static_cast<float>(y + 0.5),
            static_cast<float>(x + w - 0.5), static_cast<float>(y + h - 0.5)};
  }

 private:
  std::mt19937 random_;
};

}  // namespace kelto::test
