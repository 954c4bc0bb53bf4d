// What a film is, whatever file it ends in.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelto::host {

/// Pixels; both at least 1.
struct FrameSize {
  int32_t width = 1920;
  int32_t height = 1080;
  bool operator==(const FrameSize&) const = default;
};

/// Frames a second as a fraction in lowest terms.
struct FrameRate {
  int32_t numerator = 25;
  int32_t denominator = 1;
  double PerSecond() const { return static_cast<double>(numerator) / denominator; }
  bool operator==(const FrameRate&) const = default;
};

/// Whether a frame is one picture or two fields, and which field comes first in time. The top field
/// holds the frame's rows 0, 2, 4 ...
enum class FieldOrder { kProgressive, kTopFirst, kBottomFirst };

/// The shape of a pixel as shown, width to height, in lowest terms; both 1..65535.
struct SampleAspect {
  int32_t width = 1;
  int32_t height = 1;
  double Ratio() const { return static_cast<double>(width) / height; }
  bool operator==(const SampleAspect&) const = default;
};

struct FilmFormat {
  FrameSize size;
  FrameRate rate;
  FieldOrder fields = FieldOrder::kProgressive;
  SampleAspect sampleAspect{};
  bool Interlaced() const { return fields != FieldOrder::kProgressive; }
  /// Width over height of the frame as shown.
  double DisplayAspect() const {
    return static_cast<double>(size.width) / size.height * sampleAspect.Ratio();
  }
  bool operator==(const FilmFormat&) const = default;
};

/// Bytes of a frame in memory.
enum class PixelLayout {
  kYCbYCr,  ///< Y Cb Y Cr for two pixels; the effect's own scaling, see colour_matrix.h
  kBGRA,    ///< B, G, R, A; sRGB, full range
  kRgba16,  ///< R, G, B, A in words of the machine; sRGB, full range, colours multiplied by alpha
};

constexpr int32_t BytesPerPixel(PixelLayout layout) {
  return layout == PixelLayout::kRgba16 ? 8 : layout == PixelLayout::kBGRA ? 4 : 2;
}

/// A whole frame (fields already woven) that someone else owns.
struct FrameView {
  const uint8_t* pixels = nullptr;
  ptrdiff_t rowBytes = 0;  ///< from one row to the row below
  FrameSize size;
  const uint8_t* Row(int32_t row) const { return pixels + row * rowBytes; }
};

}  // namespace kelto::host
