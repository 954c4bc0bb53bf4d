#include "resample/background.h"

#include <algorithm>
#include <cstring>

namespace kelto {
namespace {

constexpr uint8_t kBlackLuma = 16;
constexpr uint8_t kNeutralChroma = 128;

uint8_t Saturate(double value) { return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0)); }

/// Full-range RGB to Y, Cb, Cr: weights in ten-thousandths, chroma around 128. No RGB colour leaves
/// the range of a byte.
std::array<uint8_t, 4> PatternFromRgb(int32_t red, int32_t green, int32_t blue) {
  const auto byte = [](int32_t tenThousandths) {
    return static_cast<uint8_t>(tenThousandths / 10000);
  };
  const uint8_t luma = byte(2989 * red + 5866 * green + 1145 * blue);
  const uint8_t cb = byte(-1687 * red - 3312 * green + 5000 * blue + 1280000);
  const uint8_t cr = byte(5000 * red - 4183 * green - 816 * blue + 1280000);
  return {luma, cb, luma, cr};
}

std::array<uint8_t, 4> PatternFromYcc(double luma, double cb, double cr) {
  const double red = luma + 1.402 * cr;
  const double blue = luma + 1.772 * cb;
  const double green = (luma - 0.299 * red - 0.114 * blue) / 0.587;
  return {Saturate(red), Saturate(green), Saturate(blue), 0};
}

/// Fills a range of columns. In either format byte i of a row is byte i % 4 of the pattern.
void FillColour(uint8_t* row, Range columns, int32_t pixelBytes,
                const std::array<uint8_t, 4>& pattern) {
  std::array<uint8_t, 512> repeated;
  for (size_t i = 0; i < repeated.size(); ++i) repeated[i] = pattern[i % 4];
  size_t at = static_cast<size_t>(columns.first) * static_cast<size_t>(pixelBytes);
  const size_t end = static_cast<size_t>(columns.end) * static_cast<size_t>(pixelBytes);
  while (at < end) {
    const size_t count = std::min(end - at, repeated.size() - 4);
    std::memcpy(row + at, repeated.data() + at % 4, count);
    at += count;
  }
}

/// Copies 4:2:2 columns of the video's row `row`. The frame may be the video's own buffer.
void FillVideo(uint8_t* destRow, Range columns, const Background& background, int32_t row) {
  const bool inside = row < background.videoHeight;
  const int32_t copied =
      inside ? std::clamp(background.videoWidth, columns.first, columns.end) : columns.first;
  if (copied > columns.first) {
    const uint8_t* video = background.videoRow0 + row * background.videoRowBytes;
    std::memmove(destRow + ptrdiff_t{2} * columns.first, video + ptrdiff_t{2} * columns.first,
                 static_cast<size_t>(copied - columns.first) * 2);
  }
  FillColour(destRow, {copied, columns.end}, 2,
             {kBlackLuma, kNeutralChroma, kBlackLuma, kNeutralChroma});
}

}  // namespace

std::array<uint8_t, 4> BackgroundPattern(const Background& background) {
  const uint8_t* bytes = background.bytes;
  if (background.selector == 0) return PatternFromRgb(bytes[0], bytes[1], bytes[2]);
  if (background.selector == 1) return {bytes[0], bytes[1], bytes[2], bytes[3]};
  return PatternFromYcc(bytes[0], bytes[1], bytes[3]);
}

void FillBackground(const Canvas& canvas, const Background& background, Range columns, Range rows) {
  const std::array<uint8_t, 4> pattern = BackgroundPattern(background);
  const auto fill = [&](int32_t row, Range part) {
    if (part.Empty()) return;
    uint8_t* const pixels = canvas.Row(row);
    if (canvas.format == PixelFormat::kFourByte) {
      FillColour(pixels, part, 4, pattern);
    } else if (background.videoRow0 != nullptr) {
      FillVideo(pixels, part, background, row);
    } else {
      FillColour(pixels, part, 2, pattern);
    }
  };
  if (columns.Empty()) rows = {};
  for (int32_t row = 0; row < canvas.rows; ++row) {
    if (row < rows.first || row >= rows.end) {
      fill(row, {0, canvas.width});
    } else {
      fill(row, {0, columns.first});
      fill(row, {columns.end, canvas.width});
    }
  }
}

}  // namespace kelto
