// Images of a test's own, with guarded bytes around every row.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/hfx.h"

namespace kelto::test {

/// Pixels with an image over them: rows may be padded and run upwards; every byte that belongs to
/// no pixel holds `kGuard`.
class Picture {
 public:
  static constexpr uint8_t kGuard = 0xA5;

  Picture(int32_t width, int32_t height, int32_t colorspace, int32_t padding = 0,
          bool bottomUp = false)
      : rowBytes_(width * (colorspace == hfxColorspaceRGB ? 4 : 2)),
        stride_(rowBytes_ + padding),
        bytes_(static_cast<size_t>(stride_) * height + 2 * kMargin, kGuard),
        image_(
            width, height,
            bytes_.data() + kMargin + (bottomUp ? static_cast<size_t>(stride_) * (height - 1) : 0),
            bottomUp ? -ptrdiff_t{stride_} : ptrdiff_t{stride_}, colorspace,
            colorspace == hfxColorspaceRGB ? hfxImgFormatBGRA : hfxImgFormatYCbYCr) {}
  Picture(const Picture&) = delete;

  int32_t rowBytes() const { return rowBytes_; }
  hfxImage* image() { return &image_; }
  uint8_t* row(int32_t y) { return image_.GetRowPtr(y); }
  /// All rows, top row first, without padding.
  std::vector<uint8_t> Packed() {
    std::vector<uint8_t> all;
    for (int32_t y = 0; y < image_.GetHeight(); ++y)
      all.insert(all.end(), row(y), row(y) + rowBytes_);
    return all;
  }
  /// True while no byte outside the pixels has changed.
  bool GuardsIntact() {
    std::vector<uint8_t> copy = bytes_;
    const uint8_t* base = bytes_.data();
    for (int32_t y = 0; y < image_.GetHeight(); ++y) {
      std::memset(copy.data() + (row(y) - base), kGuard, rowBytes_);
    }
    return copy == std::vector<uint8_t>(copy.size(), kGuard);
  }

 private:
  static constexpr int32_t kMargin = 64;
  int32_t rowBytes_, stride_;
  std::vector<uint8_t> bytes_;
  hfxImage image_;
};

}  // namespace kelto::test
