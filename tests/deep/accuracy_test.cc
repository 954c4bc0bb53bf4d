// The deep engine against a calculation of its own, in doubles from the filters' definitions, and
// what depth is for: motion and slopes without steps.
#include <gtest/gtest.h>

#include "framing/frame_rects.h"
#include "tests/deep/images.h"

namespace kelto {
namespace {

constexpr double kTurn = 3.14159265358979323846;

double ExactSinc(double x, double lobes) {
  if (x == 0.0) return 1.0;
  const double a = kTurn * x, b = a / lobes;
  return std::sin(a) / a * (std::sin(b) / b);
}

/// The kernels by filter. Sincs and Gaussian end with the taps.
double ExactKernel(int32_t mode, double x) {
  const double a = std::abs(x);
  switch (mode) {
    case kFilterTriangle:
      return std::max(1.0 - a, 0.0);
    case kFilterQuadratic:
      return a < 0.5 ? 0.75 - a * a : a < 1.5 ? 0.5 * (a - 1.5) * (a - 1.5) : 0.0;
    case kFilterCubic:
      return a < 1.0   ? (4.0 + a * a * (3.0 * a - 6.0)) / 6.0
             : a < 2.0 ? (2.0 - a) * (2.0 - a) * (2.0 - a) / 6.0
                       : 0.0;
    case kFilterCatmull:
      return a < 1.0   ? 1.0 + a * a * (1.5 * a - 2.5)
             : a < 2.0 ? 2.0 + a * (-4.0 + a * (2.5 - 0.5 * a))
                       : 0.0;
    case kFilterGaussian:
      return std::exp(-2.0 * x * x) * std::sqrt(2.0 / kTurn);
    case kFilterHiQual:
      return ExactSinc(x, 5.0);
    default:
      return ExactSinc(x, 16.0);
  }
}

double ExactReach(int32_t mode) {
  const double reach[] = {0, 1, 1.5, 2, 2, 1.5, 5, 16};
  return reach[mode];
}

/// Which picture pixels frame pixel `i` is made of along one axis, normalised.
struct ExactTaps {
  int32_t first = 0;
  std::vector<double> weights;
};

ExactTaps ExactTapsOf(int32_t mode, bool wholeKernels, double from, double to, int32_t pixels,
                      int32_t i) {
  const double scale = (to - from + 1.0) / pixels;
  const double position = from + i * scale, whole = std::floor(position);
  const double reach = ExactReach(mode);
  // Minifying and magnifying sample half a pixel and one pixel off.
  const bool minifies = scale > 1.0;
  const auto cut = static_cast<int32_t>(minifies ? reach * scale + 0.5 : reach);
  const int32_t taps = wholeKernels ? cut + 3 : cut;
  ExactTaps result;
  result.first = static_cast<int32_t>(whole) - taps;
  double sum = 0.0;
  for (int32_t k = -taps; k <= taps; ++k) {
    const double x = minifies ? (k - 0.5 + whole - position) / scale : whole + 1.0 - position + k;
    const double weight = wholeKernels && std::abs(x) >= reach ? 0.0 : ExactKernel(mode, x);
    result.weights.push_back(weight);
    sum += weight;
  }
  for (double& weight : result.weights) weight /= sum;
  return result;
}

/// Noise from a position, so that a picture of any size is cheap to make.
double NoiseAt(int32_t x, int32_t y, int32_t c) {
  uint32_t h = static_cast<uint32_t>(x) * 2654435761U ^ static_cast<uint32_t>(y) * 2246822519U ^
               static_cast<uint32_t>(c) * 3266489917U;
  h = (h ^ h >> 15) * 2246822519U;
  h = (h ^ h >> 13) * 3266489917U;
  return (h >> 16 & 65535U) / 65535.0;
}

/// Rows mirror at the view's first and last one, columns at the picture's, which are far away here.
int32_t MirroredRow(int32_t row, const RectF& view) {
  const auto first = static_cast<int32_t>(view.top), last = static_cast<int32_t>(view.bottom);
  while (row < first || row > last) row = row < first ? 2 * first - row : 2 * last - row;
  return row;
}

double PeakToNoise(int32_t mode, double scale, DeepSample sample, bool wholeKernels) {
  const int32_t width = 48, height = 32;
  const auto w = static_cast<int32_t>(std::ceil(width * scale)) + 2 * 110;
  const auto h = static_cast<int32_t>(std::ceil(height * scale)) + 2 * 110;
  // Smooth over some pixels, with noise on it: neither may be lost.
  const auto value = [](int32_t x, int32_t y, int32_t c) {
    const double wave = 0.5 + 0.3 * std::sin(0.11 * x + c) * std::cos(0.07 * y);
    return std::round((0.8 * wave + 0.2 * NoiseAt(x, y, c)) * 65535.0) / 65535.0;
  };
  const DeepPicture picture = test::MakePicture(w, h, sample, false, [&](int32_t x, int32_t y) {
    return DeepPixel{value(x, y, 0), value(x, y, 1), value(x, y, 2), 1.0};
  });
  RectF view = {110.25f, 110.75f, 0.0f, 0.0f};
  view.right = view.left + static_cast<float>(width * scale) - 1.0f;
  view.bottom = view.top + static_cast<float>(height * scale) - 1.0f;
  DeepJob job = test::MakeDeepJob(view, width, height, mode);
  job.wholeKernels = wholeKernels;
  const DeepPicture frame = test::RenderedFrame(job, picture, sample);
  std::vector<ExactTaps> columns;
  for (int32_t x = 0; x < width; ++x) {
    columns.push_back(ExactTapsOf(mode, wholeKernels, view.left, view.right, width, x));
  }
  double squares = 0.0;
  int32_t count = 0;
  for (int32_t y = 0; y < height; y += 3) {
    const ExactTaps down = ExactTapsOf(mode, wholeKernels, view.top, view.bottom, height, y);
    for (int32_t x = y % 2; x < width; x += 3, ++count) {
      const ExactTaps& along = columns[static_cast<size_t>(x)];
      double exact = 0.0;
      for (size_t j = 0; j < down.weights.size(); ++j) {
        const int32_t fromRow = MirroredRow(down.first + static_cast<int32_t>(j), view);
        double row = 0.0;
        for (size_t i = 0; i < along.weights.size(); ++i) {
          row += along.weights[i] * value(along.first + static_cast<int32_t>(i), fromRow, 0);
        }
        exact += down.weights[j] * row;
      }
      const double off = ReadPixel(frame.view(), x, y)[0] - exact;
      squares += off * off;
    }
  }
  return -10.0 * std::log10(squares / count);
}

TEST(DeepAccuracy, IsNinetyDecibelsOfExactArithmeticForEveryFilterAtEveryScale) {
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    for (const double scale : {6.0, 3.125, 1.5, 1.0 / 1.5, 1.0 / 6.0}) {
      const std::string row = "filter " + std::to_string(mode) + " at " + std::to_string(scale);
      const double decibels = PeakToNoise(mode, scale, DeepSample::kUnsigned16, true);
      EXPECT_GE(decibels, 90.0) << row;
      EXPECT_GE(PeakToNoise(mode, scale, DeepSample::kUnsigned16, false), 90.0) << row;
      EXPECT_GE(PeakToNoise(mode, scale, DeepSample::kFloat32, true), 90.0) << row;
      RecordProperty(row, std::to_string(decibels));
    }
  }
}

/// Where a bright spot's middle is in a frame, in frame pixels.
double SpotAt(const DeepPicture& frame) {
  double sum = 0.0, moment = 0.0;
  for (int32_t y = 0; y < frame.height(); ++y) {
    for (int32_t x = 0; x < frame.width(); ++x) {
      const double value = ReadPixel(frame.view(), x, y)[0];
      sum += value;
      moment += x * value;
    }
  }
  return moment / sum;
}

/// The standard deviation of the second difference of a spot's way, 16 pixels in 60 frames.
double TrembleOf(int32_t mode, bool wholeKernels) {
  const DeepPicture spot =
      test::MakePicture(1000, 562, DeepSample::kUnsigned16, false, [](int32_t x, int32_t y) {
        const double value =
            std::exp(-(std::pow(x - 500.0, 2) + std::pow(y - 281.0, 2)) / (2 * 62.5 * 62.5));
        return DeepPixel{value, value, value, 1.0};
      });
  std::vector<double> at;
  for (int32_t i = 0; i < 60; ++i) {
    const FrameRects rects = ComputeFrameRects({{320, 180}, 0, 16.0 / 9.0}, {1000, 562},
                                               {1.25, 0.02 - 0.04 * i / 59, 0.0});
    DeepJob job = test::MakeDeepJob(rects.source, 320, 180, mode);
    job.wholeKernels = wholeKernels;
    at.push_back(SpotAt(test::RenderedFrame(job, spot, DeepSample::kUnsigned16)));
  }
  EXPECT_NEAR(std::abs(at.front() - at.back()), 16.0, 0.05);
  double squares = 0.0;
  for (size_t i = 2; i < at.size(); ++i) {
    squares += std::pow(at[i] - 2 * at[i - 1] + at[i - 2], 2);
  }
  return std::sqrt(squares / (static_cast<double>(at.size()) - 2));
}

TEST(DeepAccuracy, ASlowPanMovesEvenly) {
  for (const int32_t mode : {kFilterCatmull, kFilterHiQual, kFilterUltraQual}) {
    const double whole = TrembleOf(mode, true), cut = TrembleOf(mode, false);
    EXPECT_LE(whole, 0.0005) << "filter " << mode;
    EXPECT_GT(cut, 0.002) << "kernels that end at whole pixels would do, too";
    const std::string row = "filter " + std::to_string(mode);
    RecordProperty(row, std::to_string(whole));
    RecordProperty(row + " ended at whole pixels", std::to_string(cut));
  }
}

}  // namespace
}  // namespace kelto
