// Pictures and frames of 16 bits or float a channel, beside the effect's own of 8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace kelto {

/// How a channel is stored, in the machine's byte order.
enum class DeepSample : int32_t {
  kUnsigned16,  ///< 0 .. 65535, all of it: 65535 is white, or opaque
  kFloat32,     ///< 0 .. 1 likewise; colours may lie beyond
};

/// 65535 or 1.
constexpr float FullScale(DeepSample sample) {
  return sample == DeepSample::kUnsigned16 ? 65535.0f : 1.0f;
}

/// Of one pixel: 8 or 16.
constexpr size_t PixelBytes(DeepSample sample) {
  return sample == DeepSample::kUnsigned16 ? 8 : 16;
}

/// Pixels of somebody else's: red, green, blue and alpha one after the other, colours multiplied by
/// alpha. `Pixels` is void or const void.
///
/// The first row is the top one. Hosts whose first row is the bottom one pass the address of their
/// last row and `rowBytes` below 0.
template <typename Pixels>
struct DeepRows {
  Pixels* pixels = nullptr;  ///< the top left pixel, aligned for its samples; null for no picture
  int32_t width = 0, height = 0;
  ptrdiff_t rowBytes = 0;  ///< from a row to the row below it, of either sign
  DeepSample sample = DeepSample::kUnsigned16;
  /// False: every pixel is opaque whatever its fourth sample holds, which is written as full scale.
  bool hasAlpha = true;

  /// Row `y` as samples, which must be those of `sample`.
  template <typename Value>
  auto Row(int32_t y) const {
    if constexpr (std::is_const_v<Pixels>) {
      return reinterpret_cast<const Value*>(static_cast<const uint8_t*>(pixels) + y * rowBytes);
    } else {
      return reinterpret_cast<Value*>(static_cast<uint8_t*>(pixels) + y * rowBytes);
    }
  }
};

/// To read from, and to write to. What may be written may be read.
using DeepSource = DeepRows<const void>;
struct DeepTarget : DeepRows<void> {
  operator DeepSource() const { return {pixels, width, height, rowBytes, sample, hasAlpha}; }
};

/// A picture that owns its pixels. They are not cleared.
class DeepPicture {
 public:
  /// No pixels.
  DeepPicture() = default;
  /// Throws std::invalid_argument for a side below 1, std::bad_alloc when memory runs out.
  DeepPicture(int32_t width, int32_t height, DeepSample sample, bool hasAlpha);

  int32_t width() const { return shape_.width; }
  int32_t height() const { return shape_.height; }
  DeepSample sample() const { return shape_.sample; }
  bool hasAlpha() const { return shape_.hasAlpha; }
  /// For pictures of which it is known when they have been filled.
  void SetHasAlpha(bool hasAlpha) { shape_.hasAlpha = hasAlpha; }
  /// What the pixels take, for budgets: the padding of rows included.
  size_t bytes() const { return bytes_; }
  /// What DeepPicture(width, height, sample, ...) would take. Sizes as above.
  static size_t BytesFor(int32_t width, int32_t height, DeepSample sample);

  /// Rows start at multiples of 64 bytes.
  DeepTarget view() {
    DeepTarget view = shape_;
    view.pixels = memory_.get();
    return view;
  }
  DeepSource view() const { return const_cast<DeepPicture*>(this)->view(); }

 private:
  struct Free {
    void operator()(void* memory) const;
  };
  DeepTarget shape_;  ///< without the pixels' address
  size_t bytes_ = 0;
  std::unique_ptr<void, Free> memory_;
};

}  // namespace kelto
