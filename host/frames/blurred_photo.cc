#include "host/frames/blurred_photo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "platform/ycrcb_weights.h"

namespace kelto::host {
namespace {

constexpr int32_t kKeptSide = 256;  ///< of the photo, along its longer side
constexpr int32_t kFieldSide = 64;  ///< of what is blurred, along the frame's longer side
constexpr int32_t kBlurRadius = 2;  ///< of the field, three times over
constexpr float kDarkness = 0.55f;  ///< darker than most photos, so that these stand out

using Bgr = std::array<float, 3>;

/// A small picture of three channels.
struct Field {
  Field(int32_t w, int32_t h) : width(w), height(h), values(static_cast<size_t>(w) * h) {}
  Bgr& At(int32_t x, int32_t y) { return values[static_cast<size_t>(y) * width + x]; }
  /// Its nearest value where there is none.
  const Bgr& Near(int32_t x, int32_t y) const {
    return values[static_cast<size_t>(std::clamp(y, 0, height - 1)) * width +
                  std::clamp(x, 0, width - 1)];
  }
  int32_t width, height;
  std::vector<Bgr> values;
};

/// The mean of what lies in [from, to) of `count`, at least one of them.
struct Span {
  int32_t begin, end;
};
Span SpanOf(double from, double to, int32_t count) {
  const int32_t begin = std::clamp(static_cast<int32_t>(from), 0, count - 1);
  return {begin, std::clamp(static_cast<int32_t>(std::ceil(to)), begin + 1, count)};
}

Field BoxBlurred(const Field& field, bool across) {
  Field blurred(field.width, field.height);
  for (int32_t y = 0; y < field.height; ++y) {
    for (int32_t x = 0; x < field.width; ++x) {
      Bgr sum{};
      for (int32_t i = -kBlurRadius; i <= kBlurRadius; ++i) {
        const Bgr& one = across ? field.Near(x + i, y) : field.Near(x, y + i);
        for (size_t c = 0; c < 3; ++c) sum[c] += one[c];
      }
      for (float& value : sum) value /= 2 * kBlurRadius + 1;
      blurred.At(x, y) = sum;
    }
  }
  return blurred;
}

/// Weights of four neighbours of a cubic B-spline, which has no kinks that the eye would find.
struct SplineTaps {
  int32_t first = 0;
  std::array<float, 4> weights{};
};

std::vector<SplineTaps> TapsFor(int32_t count, int32_t samples) {
  std::vector<SplineTaps> taps(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    const double at = (i + 0.5) * samples / count - 0.5;
    const double floor = std::floor(at);
    const auto t = static_cast<float>(at - floor);
    const float u = 1 - t;
    taps[i].first = static_cast<int32_t>(floor) - 1;
    taps[i].weights = {u * u * u / 6, (3 * t * t * t - 6 * t * t + 4) / 6,
                       (3 * u * u * u - 6 * u * u + 4) / 6, t * t * t / 6};
  }
  return taps;
}

/// Rounds by an ordered pattern, since plain rounding draws bands into soft gradients.
uint8_t Dithered(float value, int32_t x, int32_t y) {
  constexpr std::array<uint8_t, 16> kOrder{0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
  const float threshold = (kOrder[(y & 3) * 4 + (x & 3)] + 0.5f) / 16;
  return static_cast<uint8_t>(std::clamp(std::floor(value + threshold), 0.0f, 255.0f));
}

void WriteDeepRow(const std::vector<Bgr>& row, uint8_t* out) {
  void* const first = out;
  auto* words = static_cast<uint16_t*>(first);
  for (const Bgr& pixel : row) {
    for (size_t c = 0; c < 3; ++c) {
      *words++ = static_cast<uint16_t>(std::lround(std::clamp(pixel[2 - c], 0.0f, 255.0f) * 257));
    }
    *words++ = 65535;
  }
}

void WriteRow(const std::vector<Bgr>& row, int32_t y, PixelLayout layout, uint8_t* out) {
  if (layout == PixelLayout::kRgba16) return WriteDeepRow(row, out);
  const auto width = static_cast<int32_t>(row.size());
  if (layout == PixelLayout::kBGRA) {
    for (int32_t x = 0; x < width; ++x) {
      for (size_t c = 0; c < 3; ++c) *out++ = Dithered(row[x][c], x, y);
      *out++ = 255;
    }
    return;
  }
  const auto level = [](const ComponentWeights& weights, const Bgr& colour, float range) {
    return range * Weigh<float>(weights, colour[2], colour[1], colour[0]) / kWeightUnit / 255.0f;
  };
  for (int32_t x = 0; x < width; ++x) {
    const Bgr& other = row[std::min(x | 1, width - 1)];
    Bgr pair{};
    for (size_t c = 0; c < 3; ++c) pair[c] = (row[x & ~1][c] + other[c]) / 2;
    *out++ = Dithered(16 + level(kLumaWeights, row[x], 219), x, y);
    *out++ = Dithered(kChromaOffset + level(x % 2 == 0 ? kCbWeights : kCrWeights, pair, 224), x, y);
  }
}

}  // namespace

/// Keeps the photo's means, smaller. `bgrAt` gives a pixel's blue, green and red, of which `unit`
/// is one level of 255.
template <typename BgrAt>
void BlurredPhoto::Keep(int32_t width, int32_t height, double unit, const BgrAt& bgrAt) {
  const double scale = std::min(1.0, static_cast<double>(kKeptSide) / std::max(width, height));
  width_ = std::max(1, static_cast<int32_t>(std::lround(width * scale)));
  height_ = std::max(1, static_cast<int32_t>(std::lround(height * scale)));
  pixels_.reserve(size_t{3} * width_ * height_);
  for (int32_t y = 0; y < height_; ++y) {
    const Span rows = SpanOf(static_cast<double>(y) * height / height_,
                             static_cast<double>(y + 1) * height / height_, height);
    for (int32_t x = 0; x < width_; ++x) {
      const Span columns = SpanOf(static_cast<double>(x) * width / width_,
                                  static_cast<double>(x + 1) * width / width_, width);
      std::array<double, 3> sum{};
      for (int32_t row = rows.begin; row < rows.end; ++row) {
        for (int32_t column = columns.begin; column < columns.end; ++column) {
          const std::array<double, 3> bgr = bgrAt(column, row);
          for (size_t c = 0; c < 3; ++c) sum[c] += bgr[c];
        }
      }
      const double count = unit * (rows.end - rows.begin) * (columns.end - columns.begin);
      for (const double value : sum) pixels_.push_back(static_cast<float>(value / count));
    }
  }
}

BlurredPhoto::BlurredPhoto(const std::vector<uint8_t>& pixels, int32_t width, int32_t height) {
  Keep(width, height, 255.0, [&](int32_t x, int32_t y) {
    const uint8_t* const pixel = &pixels[(static_cast<size_t>(y) * width + x) * 4];
    std::array<double, 3> bgr;
    for (size_t c = 0; c < 3; ++c) bgr[c] = pixel[c] * pixel[3];
    return bgr;
  });
}

BlurredPhoto::BlurredPhoto(const DeepSource& photo) {
  const bool words = photo.sample == DeepSample::kUnsigned16;
  Keep(photo.width, photo.height, FullScale(photo.sample) / 255.0, [&](int32_t x, int32_t y) {
    std::array<double, 3> bgr;
    for (size_t c = 0; c < 3; ++c) {
      const size_t at = size_t{4} * x + 2 - c;
      // Highlights beyond white would light up all that is near them.
      bgr[c] = words ? photo.Row<uint16_t>(y)[at] : std::clamp(photo.Row<float>(y)[at], 0.0f, 1.0f);
    }
    return bgr;
  });
}

std::vector<uint8_t> BlurredPhoto::Frame(const FilmFormat& format, PixelLayout layout) const {
  const FrameSize size = format.size;
  const double shape = static_cast<double>(size.width) * format.sampleAspect.width /
                       (static_cast<double>(size.height) * format.sampleAspect.height);
  // The photo's middle in the frame's shape.
  const double across = std::min<double>(width_, height_ * shape), down = across / shape;
  const double left = (width_ - across) / 2, top = (height_ - down) / 2;
  const double larger = std::max(shape, 1.0), smaller = std::min(shape, 1.0);
  Field field(std::max(2, static_cast<int32_t>(kFieldSide * shape / larger)),
              std::max(2, static_cast<int32_t>(kFieldSide * smaller / shape)));
  for (int32_t y = 0; y < field.height; ++y) {
    const Span rows =
        SpanOf(top + y * down / field.height, top + (y + 1) * down / field.height, height_);
    for (int32_t x = 0; x < field.width; ++x) {
      const Span columns =
          SpanOf(left + x * across / field.width, left + (x + 1) * across / field.width, width_);
      Bgr sum{};
      for (int32_t row = rows.begin; row < rows.end; ++row) {
        for (int32_t i = columns.begin; i < columns.end; ++i) {
          const float* pixel = &pixels_[(static_cast<size_t>(row) * width_ + i) * 3];
          for (size_t c = 0; c < 3; ++c) sum[c] += pixel[c];
        }
      }
      const auto count =
          static_cast<float>((rows.end - rows.begin) * (columns.end - columns.begin));
      for (float& value : sum) value *= kDarkness / count;
      field.At(x, y) = sum;
    }
  }
  for (int pass = 0; pass < 3; ++pass) field = BoxBlurred(BoxBlurred(field, true), false);
  const std::vector<SplineTaps> columns = TapsFor(size.width, field.width);
  const std::vector<SplineTaps> rows = TapsFor(size.height, field.height);
  const size_t rowBytes = static_cast<size_t>(size.width) * BytesPerPixel(layout);
  std::vector<uint8_t> frame(rowBytes * size.height);
  std::vector<Bgr> line(static_cast<size_t>(field.width)), row(static_cast<size_t>(size.width));
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < field.width; ++x) {
      line[x] = {};
      for (int32_t i = 0; i < 4; ++i) {
        const Bgr& one = field.Near(x, rows[y].first + i);
        for (size_t c = 0; c < 3; ++c) line[x][c] += rows[y].weights[i] * one[c];
      }
    }
    for (int32_t x = 0; x < size.width; ++x) {
      row[x] = {};
      for (int32_t i = 0; i < 4; ++i) {
        const Bgr& one = line[std::clamp(columns[x].first + i, 0, field.width - 1)];
        for (size_t c = 0; c < 3; ++c) row[x][c] += columns[x].weights[i] * one[c];
      }
    }
    WriteRow(row, y, layout, &frame[y * rowBytes]);
  }
  return frame;
}

}  // namespace kelto::host
