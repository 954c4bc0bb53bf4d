#include "resample/realtime.h"

#include <cmath>
#include <cstring>
#include <vector>

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

void DrawRow422(const uint8_t* source, const std::vector<int32_t>& sourceColumns,
                const ChromaBytes& chroma, Range columns, uint8_t* row) {
  const int32_t chromaByte[2] = {chroma.even, chroma.odd};
  uint8_t* pixel = row + ptrdiff_t{2} * columns.first;
  size_t parity = static_cast<size_t>(columns.first % 2);
  for (const int32_t sourceColumn : sourceColumns) {
    const uint8_t* from = source + ptrdiff_t{4} * sourceColumn;
    *pixel++ = from[0];
    *pixel++ = from[chromaByte[parity]];
    parity ^= 1;
  }
}

void DrawRow4Byte(const uint8_t* source, const std::vector<int32_t>& sourceColumns, Range columns,
                  uint8_t* row) {
  uint8_t* pixel = row + ptrdiff_t{4} * columns.first;
  for (const int32_t sourceColumn : sourceColumns) {
    std::memcpy(pixel, source + ptrdiff_t{4} * sourceColumn, 4);
    pixel += 4;
  }
}

}  // namespace

void DrawRealTime(const Canvas& canvas, const PixelBlock& source, const ChromaBytes& chroma,
                  const Picture& picture, Range columns, Range rows) {
  if (columns.Empty()) return;
  const std::vector<int32_t> sourceColumns =
      SourceColumns(picture.columns.map, columns, source.width);
  for (int32_t row = rows.first; row < rows.end; ++row) {
    const float position = picture.rows.map.At(canvas.FrameRow(row));
    const int32_t sourceRow = Inside(static_cast<int64_t>(std::floor(position)), source.height);
    const uint8_t* from = source.pixels + sourceRow * source.rowBytes;
    if (canvas.format == PixelFormat::Packed422) {
      DrawRow422(from, sourceColumns, chroma, columns, canvas.Row(row));
    } else {
      DrawRow4Byte(from, sourceColumns, columns, canvas.Row(row));
    }
  }
}

}  // namespace kelto
