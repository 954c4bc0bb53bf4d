#include "host/processes/shared_frames.h"

#include <sys/mman.h>

#include <cstring>
#include <new>

namespace kelto::host {

SharedFrames::SharedFrames(FrameSize size, PixelLayout layout, size_t count)
    : size_(size),
      rowBytes_(static_cast<size_t>(size.width) * BytesPerPixel(layout)),
      frameBytes_(rowBytes_ * size.height),
      allBytes_(frameBytes_ * count),
      memory_(mmap(nullptr, allBytes_, PROT_READ | PROT_WRITE,
                   MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
  if (memory_ == MAP_FAILED) throw std::bad_alloc();
}

SharedFrames::~SharedFrames() { munmap(memory_, allBytes_); }

void SharedFrames::Store(size_t place, const FrameView& frame) {
  uint8_t* to = Start(place);
  for (int32_t row = 0; row < size_.height; ++row) {
    std::memcpy(to + row * rowBytes_, frame.Row(row), rowBytes_);
  }
}

FrameView SharedFrames::View(size_t place) const {
  return {Start(place), static_cast<ptrdiff_t>(rowBytes_), size_};
}

uint8_t* SharedFrames::Start(size_t place) const {
  return static_cast<uint8_t*>(memory_) + place * frameBytes_;
}

}  // namespace kelto::host
