#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "runtime/hfx/host.h"

namespace hfx {
namespace {

int32_t FormatOf(int32_t colorspace) {
  return colorspace == hfxColorspaceRGB ? hfxImgFormatBGRA : hfxImgFormatYCbYCr;
}

int64_t RowBytes(int32_t width, int32_t colorspace, const ImageBuffer::Rows& rows) {
  const int64_t pixels = int64_t{width} * (colorspace == hfxColorspaceRGB ? 4 : 2);
  return std::max<int64_t>(pixels, rows.bytes);
}

size_t BufferBytes(int32_t width, int32_t height, int32_t colorspace,
                   const ImageBuffer::Rows& rows) {
  if (colorspace != hfxColorspaceRGB && colorspace != hfxColorspaceYCbCr) {
    throw std::invalid_argument("image buffer: unknown colour space");
  }
  if (width < 0 || height < 0) throw std::invalid_argument("image buffer: negative size");
  const int64_t rowBytes = RowBytes(width, colorspace, rows);
  if (height > 0 && rowBytes > std::numeric_limits<ptrdiff_t>::max() / height) {
    throw std::bad_alloc();
  }
  return static_cast<size_t>(rowBytes * height);
}

hfxImage Describe(std::vector<uint8_t>& bytes, int32_t width, int32_t height, int32_t colorspace,
                  const ImageBuffer::Rows& rows) {
  const auto rowBytes = static_cast<ptrdiff_t>(RowBytes(width, colorspace, rows));
  const bool upwards = rows.bottomUp && height > 0;
  uint8_t* row0 = bytes.data() + (upwards ? (height - 1) * rowBytes : 0);
  return hfxImage(width, height, row0, rows.bottomUp ? -rowBytes : rowBytes, colorspace,
                  FormatOf(colorspace));
}

void PaintBlack(const hfxImage& image) {
  constexpr uint8_t kOpaqueBlack[] = {0, 0, 0, 255};
  constexpr uint8_t kStudioBlack[] = {16, 128, 16, 128};
  const bool rgb = image.GetColorspace() == hfxColorspaceRGB;
  const uint8_t* pattern = rgb ? kOpaqueBlack : kStudioBlack;
  const int32_t rowLength = image.GetWidth() * (rgb ? 4 : 2);
  for (int32_t row = 0; row < image.GetHeight(); ++row) {
    uint8_t* pixels = image.GetRowPtr(row);
    for (int32_t i = 0; i < rowLength; ++i) pixels[i] = pattern[i % 4];
  }
}

}  // namespace

ImageBuffer::ImageBuffer(int32_t width, int32_t height, int32_t colorspace)
    : ImageBuffer(width, height, colorspace, Rows()) {}

ImageBuffer::ImageBuffer(int32_t width, int32_t height, int32_t colorspace, const Rows& rows)
    : bytes_(BufferBytes(width, height, colorspace, rows)),
      image_(Describe(bytes_, width, height, colorspace, rows)) {
  PaintBlack(image_);
}

hfxImage FieldView(const hfxImage& frame, bool topField) {
  const int32_t rows = (frame.GetHeight() + (topField ? 1 : 0)) / 2;
  // A frame of one row has no second row to point at.
  uint8_t* row0 = frame.GetRowPtr(rows > 0 && !topField ? 1 : 0);
  return hfxImage(frame.GetWidth(), rows, row0, frame.GetRowDelta() * 2, frame.GetColorspace(),
                  frame.GetImgFormat());
}

}  // namespace hfx
