// A host's picture: any depth, any order of rows, part of a frame.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include "platform/openfx.h"

namespace kelto::openfx {

enum class Depth { kByte, kShort, kFloat };
enum class Alpha { kOpaque, kPremultiplied, kUnpremultiplied };

/// Red, green, blue, alpha; 1 is full scale, colours multiplied by alpha.
using Pixel = std::array<double, 4>;

/// Holds an image of a clip for as long as it is used. Places in it are those of whole frames: of a
/// field that the host stores alone, in an image of half the height, only the field's rows are to
/// be written, and each stands for the one beside it when it is read.
class Image {
 public:
  /// No image where the clip has none at that time, or it is in a form that the plug-in does not
  /// know. `scaleY` is the render scale.
  Image(ofx::Clip clip, ofx::Time time, double scaleY);
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  explicit operator bool() const { return data_ != nullptr; }
  const ofx::RectI& bounds() const { return bounds_; }
  /// What the image is a part of, in its pixels.
  const ofx::RectI& frame() const { return frame_; }
  /// A rectangle of the host's image, held within it, as one of frames.
  ofx::RectI WindowOf(const ofx::RectI& stored) const;
  /// Leaves the other field's rows alone in an image that holds both; any other text, and any other
  /// image, changes nothing.
  void DrawFieldAlone(const std::string& field);
  Depth depth() const { return depth_; }
  double pixelAspect() const { return pixelAspect_; }
  bool Holds(int x, int y) const {
    return x >= bounds_.x1 && x < bounds_.x2 && y >= bounds_.y1 && y < bounds_.y2;
  }
  /// Whether row `y` is to be written.
  bool Draws(int y) const {
    return rows_ == Rows::kAll || ((y & 1) != 0) == (rows_ == Rows::kUpper);
  }

  /// Of a pixel that the image holds; y upwards.
  Pixel Read(int x, int y) const;
  void Write(int x, int y, const Pixel& pixel) const;
  /// Writes a pixel of bytes B, G, R, A, colours not multiplied by alpha; an opaque one without
  /// loss.
  void WriteBgra(int x, int y, uint32_t pixel) const;
  /// The pixel as bytes B, G, R, A, opaque.
  uint32_t ReadBgra(int x, int y) const;
  /// Copies a pixel of an image of the same form bit by bit, else by its value.
  void CopyFrom(const Image& from, int x, int y) const;

 private:
  /// The lower field has rows 0, 2, 4.
  enum class Rows { kAll, kLower, kUpper };
  struct Release {
    void operator()(ofx::Properties image) const;
  };
  void ReadField(ofx::Clip clip, ofx::Time time, double scaleY);
  uint8_t* At(int x, int y) const;
  template <typename Sample>
  void Store(int x, int y, const std::array<Sample, 4>& rgba) const;

  std::unique_ptr<std::remove_pointer_t<ofx::Properties>, Release> handle_;
  uint8_t* data_ = nullptr;
  ofx::RectI bounds_{}, frame_{};
  bool bothFields_ = false, halfHeight_ = false;
  Rows rows_ = Rows::kAll;
  ptrdiff_t rowBytes_ = 0;
  Depth depth_ = Depth::kByte;
  int components_ = 4;
  Alpha alpha_ = Alpha::kPremultiplied;
  double pixelAspect_ = 1.0;
};

}  // namespace kelto::openfx
