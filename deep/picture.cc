#include "deep/picture.h"

#include <new>
#include <stdexcept>

#include "platform/huge_pages.h"

namespace kelto {
namespace {

constexpr size_t kRowAlignment = 64;

size_t DeepRowBytes(int32_t width, DeepSample sample) {
  // Rows a multiple of a page apart would lie in the same few sets of the cache.
  constexpr size_t kPage = 4096;
  const size_t pixels = static_cast<size_t>(width) * PixelBytes(sample);
  const size_t aligned = (pixels + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
  return aligned % kPage == 0 ? aligned + kRowAlignment : aligned;
}

}  // namespace

void DeepPicture::Free::operator()(void* memory) const {
  ::operator delete (memory, std::align_val_t{kRowAlignment});
}

size_t DeepPicture::BytesFor(int32_t width, int32_t height, DeepSample sample) {
  if (width < 1 || height < 1) {
    throw std::invalid_argument("a picture needs at least one pixel each way");
  }
  const size_t row = DeepRowBytes(width, sample);
  if (row > static_cast<size_t>(PTRDIFF_MAX) / static_cast<size_t>(height)) throw std::bad_alloc();
  return row * static_cast<size_t>(height);
}

DeepPicture::DeepPicture(int32_t width, int32_t height, DeepSample sample, bool hasAlpha)
    : bytes_(BytesFor(width, height, sample)),
      memory_(::operator new (bytes_, std::align_val_t{kRowAlignment})) {
  AdviseHugePages(memory_.get(), bytes_);
  shape_.width = width;
  shape_.height = height;
  shape_.rowBytes = static_cast<ptrdiff_t>(DeepRowBytes(width, sample));
  shape_.sample = sample;
  shape_.hasAlpha = hasAlpha;
}

}  // namespace kelto
