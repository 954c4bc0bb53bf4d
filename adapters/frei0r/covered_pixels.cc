#include "adapters/frei0r/covered_pixels.h"

#include <algorithm>
#include <cmath>

namespace kelto::frei0r {
namespace {

/// Covering less of a pixel than this does not change it.
constexpr double kNegligible = 1.0 / 1024.0;

int32_t Within(double coordinate, int32_t size) {
  return static_cast<int32_t>(std::clamp(coordinate, 0.0, static_cast<double>(size)));
}

void CopyOpaque(const hfxImage& video, int32_t row, int32_t from, int32_t to, hfxImage& output) {
  uint8_t* out = output.GetRowPtr(row);
  std::copy(video.GetRowPtr(row) + 4 * from, video.GetRowPtr(row) + 4 * to, out + 4 * from);
  for (int32_t x = from; x < to; ++x) out[4 * x + 3] = 255;
}

}  // namespace

CoveredPixels CoveredBy(const DrawnFrame& frame, const View& view, PixelSize size, bool nearest) {
  const DrawnArea area = AreaOf(frame, view);
  const auto first = [=](double edge, double scale, int32_t side) {
    const double from = -edge / scale;
    return Within(nearest ? std::ceil(from - 0.5) : std::floor(from + kNegligible), side);
  };
  const auto end = [=](double edge, double scale, int32_t photo, int32_t side) {
    const double to = (photo - edge) / scale;
    return Within(nearest ? std::ceil(to - 0.5) : std::ceil(to - kNegligible), side);
  };
  return {first(area.left, area.scaleX, size.width), first(area.top, area.scaleY, size.height),
          end(area.left, area.scaleX, frame.photo.width, size.width),
          end(area.top, area.scaleY, frame.photo.height, size.height)};
}

CoveredPixels CoveredByEither(const CoveredPixels& a, const CoveredPixels& b) {
  const auto empty = [](const CoveredPixels& area) {
    return area.left >= area.right || area.top >= area.bottom;
  };
  if (empty(a)) return b;
  if (empty(b)) return a;
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
          std::max(a.bottom, b.bottom)};
}

void KeepVideoBeside(const CoveredPixels& covered, const hfxImage& video, int32_t firstRow,
                     int32_t rowStep, hfxImage& output) {
  const int32_t width = output.GetWidth();
  for (int32_t row = 0; row < output.GetHeight(); ++row) {
    const int32_t frameRow = firstRow + row * rowStep;
    if (frameRow < covered.top || frameRow >= covered.bottom || covered.left >= covered.right) {
      CopyOpaque(video, row, 0, width, output);
    } else {
      CopyOpaque(video, row, 0, covered.left, output);
      CopyOpaque(video, row, covered.right, width, output);
    }
  }
}

}  // namespace kelto::frei0r
