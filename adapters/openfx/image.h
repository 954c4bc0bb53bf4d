// A host's picture: any depth, any order of rows, part of a frame.
#pragma once

#include <array>
#include <cstdint>

#include "platform/openfx.h"

namespace kelto::openfx {

enum class Depth { kByte, kShort, kFloat };
enum class Alpha { kOpaque, kPremultiplied, kUnpremultiplied };

/// Red, green, blue, alpha; 1 is full scale, colours multiplied by alpha.
using Pixel = std::array<double, 4>;

/// Holds an image of a clip for as long as it is used.
class Image {
 public:
  /// No image where the clip has none at that time, or it is in a form that the plug-in does not
  /// know.
  Image(ofx::Clip clip, ofx::Time time);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  explicit operator bool() const { return data_ != nullptr; }
  const ofx::RectI& bounds() const { return bounds_; }
  /// What the image is a part of, in its pixels.
  const ofx::RectI& frame() const { return frame_; }
  Depth depth() const { return depth_; }
  double pixelAspect() const { return pixelAspect_; }
  bool Holds(int x, int y) const {
    return x >= bounds_.x1 && x < bounds_.x2 && y >= bounds_.y1 && y < bounds_.y2;
  }

  /// Of a pixel that the image holds; y upwards.
  Pixel Read(int x, int y) const;
  void Write(int x, int y, const Pixel& pixel) const;
  /// Writes a pixel of bytes B, G, R, A, opaque, without loss.
  void WriteBgra(int x, int y, uint32_t pixel) const;
  /// The pixel as bytes B, G, R, A, opaque.
  uint32_t ReadBgra(int x, int y) const;
  /// Copies a pixel of an image of the same form bit by bit, else by its value.
  void CopyFrom(const Image& from, int x, int y) const;

 private:
  uint8_t* At(int x, int y) const;
  template <typename Sample>
  void Store(int x, int y, const std::array<Sample, 4>& rgba) const;

  ofx::Properties handle_ = nullptr;
  uint8_t* data_ = nullptr;
  ofx::RectI bounds_{}, frame_{};
  ptrdiff_t rowBytes_ = 0;
  Depth depth_ = Depth::kByte;
  int components_ = 4;
  Alpha alpha_ = Alpha::kPremultiplied;
  double pixelAspect_ = 1.0;
};

}  // namespace kelto::openfx
