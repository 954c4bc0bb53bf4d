#include "resample/realtime.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "resample/nearest_pixels.h"

namespace kelto {
namespace {

int32_t Inside(int64_t pixel, int32_t size) {
  return static_cast<int32_t>(std::clamp<int64_t>(pixel, 0, size - int64_t{1}));
}

/// Source columns of destination columns, stepped like a line: the whole part of the step each
/// time, and one more whenever the fractions add up to over 1. They start with that of the first
/// column's exact position, so that a slow pan does not jump by whole pixels more than it must.
std::vector<int32_t> SourceColumns(const AxisMap& map, Range columns, int32_t imageWidth) {
  std::vector<int32_t> pixels;
  pixels.reserve(static_cast<size_t>(columns.end - columns.first));
  const float start = map.At(columns.first);
  const float wholeStep = std::floor(map.scale);
  const float fractionStep = map.scale - wholeStep;
  const auto pixelStep = static_cast<int64_t>(wholeStep);
  auto pixel = static_cast<int64_t>(std::floor(start));
  float fraction = start - std::floor(start);
  for (int32_t column = columns.first; column < columns.end; ++column) {
    pixels.push_back(Inside(pixel, imageWidth));
    pixel += pixelStep;
    fraction += fractionStep;
    if (fraction > 1.0f) {
      fraction -= 1.0f;
      ++pixel;
    }
  }
  return pixels;
}

}  // namespace

void DrawRealTime(const Canvas& canvas, const PixelBlock& source, const ChromaBytes& chroma,
                  const Picture& picture, Range columns, Range rows) {
  if (columns.Empty()) return;
  const std::vector<int32_t> sourceColumns =
      SourceColumns(picture.columns.map, columns, source.width);
  const bool packed = canvas.format == PixelFormat::Packed422;
  const TakenBytes taken = packed ? TakenBytes422(chroma, columns.first) : kWholePixels;
  const size_t offset = static_cast<size_t>(columns.first) * (packed ? 2 : 4);
  const size_t count = sourceColumns.size() * (packed ? 2 : 4);
  int32_t drawn = -1;
  for (int32_t row = rows.first; row < rows.end; ++row) {
    const float position = picture.rows.map.At(canvas.FrameRow(row));
    const int32_t sourceRow = Inside(static_cast<int64_t>(std::floor(position)), source.height);
    uint8_t* const to = canvas.Row(row) + offset;
    if (sourceRow == drawn) {
      std::memcpy(to, canvas.Row(row - 1) + offset, count);
      continue;
    }
    NearestPixels(source.pixels + sourceRow * source.rowBytes, sourceColumns, taken, to);
    drawn = sourceRow;
  }
}

}  // namespace kelto
