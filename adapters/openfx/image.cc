#include "adapters/openfx/image.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "adapters/openfx/suites.h"

namespace kelto::openfx {
namespace {

size_t SampleBytes(Depth depth) {
  return depth == Depth::kByte ? 1 : depth == Depth::kShort ? 2 : 4;
}

bool IsEmpty(const ofx::RectI& rect) { return rect.x1 >= rect.x2 || rect.y1 >= rect.y2; }

/// The image's own depth and components are believed, since some hosts report others of the clip.
bool ReadForm(const Reader& reader, Depth& depth, int& components, Alpha& alpha) {
  const std::string bits = reader.String(ofx::prop::kPixelDepth, "");
  if (bits == ofx::value::kByte) {
    depth = Depth::kByte;
  } else if (bits == ofx::value::kShort) {
    depth = Depth::kShort;
  } else if (bits == ofx::value::kFloat) {
    depth = Depth::kFloat;
  } else {
    return false;
  }
  const std::string channels = reader.String(ofx::prop::kComponents, "");
  if (channels != ofx::value::kRgba && channels != ofx::value::kRgb) return false;
  components = channels == ofx::value::kRgba ? 4 : 3;
  const std::string state =
      reader.String(ofx::prop::kPreMultiplication, ofx::value::kPremultiplied);
  alpha = components == 3 || state == ofx::value::kOpaque ? Alpha::kOpaque
          : state == ofx::value::kUnpremultiplied         ? Alpha::kUnpremultiplied
                                                          : Alpha::kPremultiplied;
  return true;
}

template <typename Sample>
Sample Rounded(double value, double scale) {
  if (!(value > 0.0)) return 0;  // not a number, either
  return static_cast<Sample>(std::lround(std::min(value, 1.0) * scale));
}

}  // namespace

void Image::Release::operator()(ofx::Properties image) const {
  TheSuites().effects->clipReleaseImage(image);
}

Image::Image(ofx::Clip clip, ofx::Time time, double scaleY) {
  ofx::Properties handle = nullptr;
  if (clip == nullptr ||
      TheSuites().effects->clipGetImage(clip, time, nullptr, &handle) != ofx::kOk) {
    return;
  }
  handle_.reset(handle);
  const Reader reader(handle);
  rowBytes_ = reader.Int(ofx::prop::kImageRowBytes, 0);
  pixelAspect_ = reader.Double(ofx::prop::kImagePixelAspect, 1.0);
  if (!reader.Rect(ofx::prop::kImageBounds, bounds_) || IsEmpty(bounds_)) return;
  if (!reader.Rect(ofx::prop::kImageRegionOfDefinition, frame_) || IsEmpty(frame_)) {
    frame_ = bounds_;
  }
  if (!ReadForm(reader, depth_, components_, alpha_)) return;
  ReadField(clip, time, scaleY);
  data_ = static_cast<uint8_t*>(reader.Pointer(ofx::prop::kImageData));
}

/// Of one field, hosts hand out either a whole frame with each of its rows twice, which is drawn
/// like any other, or the field's rows alone: half of what the clip says that its frames have.
void Image::ReadField(ofx::Clip clip, ofx::Time time, double scaleY) {
  const std::string field = Reader(handle_.get()).String(ofx::prop::kImageField, "");
  bothFields_ = field == ofx::value::kFieldBoth;
  const bool lower = field == ofx::value::kFieldLower;
  const auto regionOf = TheSuites().effects->clipGetRegionOfDefinition;
  ofx::RectD region{};
  if ((!lower && field != ofx::value::kFieldUpper) || regionOf == nullptr ||
      regionOf(clip, time, &region) != ofx::kOk) {
    return;
  }
  constexpr double kAlmostTwice = 1.5;
  const int64_t stored = int64_t{frame_.y2} - frame_.y1;
  constexpr int kFar = 1 << 29;
  if ((region.y2 - region.y1) * scaleY < kAlmostTwice * static_cast<double>(stored) ||
      std::min({bounds_.y1, frame_.y1}) < -kFar || std::max({bounds_.y2, frame_.y2}) > kFar) {
    return;
  }
  halfHeight_ = true;
  rows_ = lower ? Rows::kLower : Rows::kUpper;
  for (ofx::RectI* rect : {&bounds_, &frame_}) {
    rect->y1 *= 2;
    rect->y2 *= 2;
  }
}

ofx::RectI Image::WindowOf(const ofx::RectI& stored) const {
  const int rows = halfHeight_ ? 2 : 1;
  // Held first: a host's window may be of any numbers.
  const auto x = [&](int side) { return std::clamp(side, bounds_.x1, bounds_.x2); };
  const auto y = [&](int side) {
    return rows * std::clamp(side, bounds_.y1 / rows, bounds_.y2 / rows);
  };
  return {x(stored.x1), y(stored.y1), x(stored.x2), y(stored.y2)};
}

void Image::DrawFieldAlone(const std::string& field) {
  if (!bothFields_) return;
  if (field == ofx::value::kFieldLower) rows_ = Rows::kLower;
  if (field == ofx::value::kFieldUpper) rows_ = Rows::kUpper;
}

uint8_t* Image::At(int x, int y) const {
  const auto pixelBytes = static_cast<ptrdiff_t>(SampleBytes(depth_)) * components_;
  const int row = halfHeight_ ? (y - bounds_.y1) / 2 : y - bounds_.y1;
  return data_ + row * rowBytes_ + (ptrdiff_t{x} - bounds_.x1) * pixelBytes;
}

/// By memcpy: a host's rows may be of any length, so samples need not be aligned.
template <typename Sample>
void Image::Store(int x, int y, const std::array<Sample, 4>& rgba) const {
  std::memcpy(At(x, y), rgba.data(), sizeof(Sample) * static_cast<size_t>(components_));
}

Pixel Image::Read(int x, int y) const {
  Pixel pixel{0.0, 0.0, 0.0, 1.0};
  const uint8_t* at = At(x, y);
  for (size_t i = 0; i < static_cast<size_t>(components_); ++i) {
    if (depth_ == Depth::kByte) {
      pixel[i] = at[i] / 255.0;
    } else if (depth_ == Depth::kShort) {
      uint16_t sample = 0;
      std::memcpy(&sample, at + i * sizeof sample, sizeof sample);
      pixel[i] = sample / 65535.0;
    } else {
      float sample = 0.0f;
      std::memcpy(&sample, at + i * sizeof sample, sizeof sample);
      pixel[i] = sample;
    }
  }
  if (alpha_ == Alpha::kOpaque) pixel[3] = 1.0;
  if (alpha_ == Alpha::kUnpremultiplied) {
    for (size_t i = 0; i < 3; ++i) pixel[i] *= pixel[3];
  }
  return pixel;
}

void Image::Write(int x, int y, const Pixel& pixel) const {
  Pixel stored = pixel;
  if (alpha_ == Alpha::kUnpremultiplied && pixel[3] > 0.0) {
    for (size_t i = 0; i < 3; ++i) stored[i] /= pixel[3];
  }
  if (alpha_ == Alpha::kOpaque) stored[3] = 1.0;
  const auto each = [&](auto convert) {
    std::array<decltype(convert(0.0)), 4> samples{};
    std::transform(stored.begin(), stored.end(), samples.begin(), convert);
    Store(x, y, samples);
  };
  switch (depth_) {
    case Depth::kByte:
      return each([](double value) { return Rounded<uint8_t>(value, 255.0); });
    case Depth::kShort:
      return each([](double value) { return Rounded<uint16_t>(value, 65535.0); });
    case Depth::kFloat:
      return each([](double value) { return static_cast<float>(value); });
  }
}

void Image::WriteBgra(int x, int y, uint32_t pixel) const {
  uint8_t bgra[4];
  std::memcpy(bgra, &pixel, sizeof bgra);
  if (bgra[3] != 255) {
    const double alpha = bgra[3] / 255.0;
    const auto seen = [&](uint8_t level) { return alpha * level / 255.0; };
    return Write(x, y, {seen(bgra[2]), seen(bgra[1]), seen(bgra[0]), alpha});
  }
  const auto each = [&](auto convert) {
    Store(x, y, std::array{convert(bgra[2]), convert(bgra[1]), convert(bgra[0]), convert(255)});
  };
  switch (depth_) {
    case Depth::kByte:
      return each([](int level) { return static_cast<uint8_t>(level); });
    case Depth::kShort:
      return each([](int level) { return static_cast<uint16_t>(level * 257); });
    case Depth::kFloat:
      return each([](int level) { return static_cast<float>(level / 255.0); });
  }
}

uint32_t Image::ReadBgra(int x, int y) const {
  uint32_t packed = 0;
  if (depth_ == Depth::kByte && alpha_ != Alpha::kUnpremultiplied) {
    const uint8_t* at = At(x, y);
    const uint8_t same[4] = {at[2], at[1], at[0], 255};
    std::memcpy(&packed, same, sizeof packed);
    return packed;
  }
  const Pixel pixel = Read(x, y);
  const uint8_t bgra[4] = {Rounded<uint8_t>(pixel[2], 255.0), Rounded<uint8_t>(pixel[1], 255.0),
                           Rounded<uint8_t>(pixel[0], 255.0), 255};
  std::memcpy(&packed, bgra, sizeof packed);
  return packed;
}

void Image::CopyFrom(const Image& from, int x, int y) const {
  if (!from.Holds(x, y)) return Write(x, y, {});
  if (depth_ == from.depth_ && components_ == from.components_ && alpha_ == from.alpha_) {
    std::memcpy(At(x, y), from.At(x, y), SampleBytes(depth_) * static_cast<size_t>(components_));
  } else {
    Write(x, y, from.Read(x, y));
  }
}

}  // namespace kelto::openfx
