#include "runtime/pxcfx/image.h"

#include <cstring>

pxcImage::pxcImage(int32_t width, int32_t height, const char* layout, void* pixels,
                   int32_t /*component*/, int32_t /*colorSpace*/)
    : width_(width),
      height_(height),
      layout_(),
      row0_(static_cast<uint8_t*>(pixels)),
      rowDelta_(0) {
  if (layout != nullptr) std::memcpy(layout_, layout, strnlen(layout, sizeof(layout_) - 1));
  rowDelta_ = ptrdiff_t{width} * kelto::pxcfx::BytesPerPixel(*this);
}

void pxcImage::SetRes(int32_t width, int32_t height) {
  width_ = width;
  height_ = height;
}

void pxcImage::SetPixelArray(void* row0, ptrdiff_t rowDelta) {
  row0_ = static_cast<uint8_t*>(row0);
  rowDelta_ = rowDelta;
}

pxcImgProc::~pxcImgProc() = default;

namespace kelto::pxcfx {

bool HasLayout(const pxcImage& image, const char* layout) {
  return std::strcmp(image.layout(), layout) == 0;
}

int BytesPerPixel(const pxcImage& image) { return HasLayout(image, k422) ? 2 : 4; }

}  // namespace kelto::pxcfx
