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

void CopyPixels(const hfxImage& video, int32_t row, int32_t from, int32_t to, hfxImage& output) {
  const ptrdiff_t begin = ptrdiff_t{4} * from, end = ptrdiff_t{4} * to;
  std::copy(video.GetRowPtr(row) + begin, video.GetRowPtr(row) + end,
            output.GetRowPtr(row) + begin);
}

/// What of a side the photo takes up, in pixels of the frame.
struct Extent {
  double from, to;
  /// The part of pixel `n` that is covered.
  double PartOf(int32_t n) const {
    return std::clamp(std::min(n + 1.0, to) - std::max<double>(n, from), 0.0, 1.0);
  }
};

void SetPart(double part, uint8_t* pixel) {
  if (part > 1.0 - kNegligible) return;
  pixel[3] = static_cast<uint8_t>(std::lround(255 * part));
  for (int c = 0; c < 3; ++c) {
    pixel[c] = static_cast<uint8_t>(std::min(255.0, pixel[c] / std::max(part, kNegligible)));
  }
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
      CopyPixels(video, row, 0, width, output);
    } else {
      CopyPixels(video, row, 0, covered.left, output);
      CopyPixels(video, row, covered.right, width, output);
    }
  }
}

void SetPartsAsAlpha(const DrawnFrame& frame, const View& view, const CoveredPixels& covered,
                     int32_t firstRow, int32_t rowStep, hfxImage& output) {
  const DrawnArea area = AreaOf(frame, view);
  const Extent across{-area.left / area.scaleX, (frame.photo.width - area.left) / area.scaleX};
  const Extent down{-area.top / area.scaleY, (frame.photo.height - area.top) / area.scaleY};
  for (int32_t row = 0; row < output.GetHeight(); ++row) {
    const int32_t frameRow = firstRow + row * rowStep;
    if (frameRow < covered.top || frameRow >= covered.bottom) continue;
    const double part = down.PartOf(frameRow);
    uint8_t* const pixels = output.GetRowPtr(row);
    for (int32_t x = covered.left; x < covered.right; ++x) {
      SetPart(part * across.PartOf(x), pixels + ptrdiff_t{4} * x);
    }
  }
}

}  // namespace kelto::frei0r
