#include <algorithm>

#include "platform/hfx.h"

hfxImage::hfxImage(int32_t width, int32_t height, uint8_t* row0, ptrdiff_t rowDelta,
                   int32_t colorspace, int32_t imgFormat)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      row0_(row0),
      rowDelta_(rowDelta),
      colorspace_(colorspace),
      imgFormat_(imgFormat) {}

int32_t hfxImage::GetChannelType(int32_t) const { return 0; }

int32_t hfxImage::GetChannelSize() const { return 8; }

int32_t hfxImage::GetNumChannels() const {
  switch (colorspace_) {
    case hfxColorspaceRGB:
      return 4;
    case hfxColorspaceYCbCr:
      return 2;
    default:
      return 0;
  }
}
