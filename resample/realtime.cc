#include "resample/realtime.h"

#include <cmath>
#include <cstring>

#include "resample/nearest_pixels.h"

namespace kelto {
namespace {

int32_t Inside(int64_t pixel, int32_t size) {
  return static_cast<int32_t>(std::clamp<int64_t>(pixel, 0, size - int64_t{1}));
}

}  // namespace

std::vector<int32_t> NearestColumns(const AxisMap& map, Range columns, int32_t imageWidth) {
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

int32_t NearestRow(const AxisMap& map, int32_t frameRow, int32_t imageHeight) {
  return Inside(static_cast<int64_t>(std::floor(map.At(frameRow))), imageHeight);
}

void DrawRealTime(const Canvas& canvas, const PixelBlock& source, const ChromaBytes& chroma,
                  const Picture& picture, Range columns, Range rows) {
  if (columns.Empty()) return;
  const std::vector<int32_t> sourceColumns =
      NearestColumns(picture.columns.map, columns, source.width);
  const bool packed = canvas.format == PixelFormat::kPacked422;
  const TakenBytes taken = packed ? TakenBytes422(chroma, columns.first) : kWholePixels;
  const size_t offset = static_cast<size_t>(columns.first) * (packed ? 2 : 4);
  const size_t count = sourceColumns.size() * (packed ? 2 : 4);
  int32_t drawn = -1;
  for (int32_t row = rows.first; row < rows.end; ++row) {
    const int32_t sourceRow = NearestRow(picture.rows.map, canvas.FrameRow(row), source.height);
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
