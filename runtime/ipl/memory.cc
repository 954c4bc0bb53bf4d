// Pixel memory: attached to headers, counted, and capped on request.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/ipl.h"
#include "runtime/ipl/status.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace kelto::ipl {
namespace {

constexpr const char* kOperation = "iplAllocateImage";
/// A cache line, and wide enough for any vector load.
constexpr uintptr_t kPixelAlignment = 64;

uint64_t memoryLimit = 0;
uint64_t allocatedBytes = 0;

void FreePixels(IplImage& image) {
  if (image.imageDataOrigin == nullptr) return;
  std::free(image.imageDataOrigin);
  image.imageData = image.imageDataOrigin = nullptr;
  allocatedBytes -= image.imageSize;
}

char* AlignUp(char* address) {
  const uintptr_t value = reinterpret_cast<uintptr_t>(address);
  return address + (kPixelAlignment - value % kPixelAlignment) % kPixelAlignment;
}

/// Images are written once from end to end: huge pages spare a large one tens of thousands of page
/// faults. A hint only; nothing depends on it.
void AdviseHugePages([[maybe_unused]] char* memory, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  constexpr size_t kPage = 4096, kWorthwhile = size_t{8} << 20;
  if (bytes < kWorthwhile) return;
  const size_t skipped = (kPage - reinterpret_cast<uintptr_t>(memory) % kPage) % kPage;
  madvise(memory + skipped, (bytes - skipped) / kPage * kPage, MADV_HUGEPAGE);
#endif
}

}  // namespace
}  // namespace kelto::ipl

extern "C" {

void iplAllocateImage(IplImage* image, int32_t doFill, int32_t fillValue) {
  using namespace kelto::ipl;
  if (image == nullptr) {
    Fail(IPL_StsNullPtr, kOperation, "no image header");
    return;
  }
  FreePixels(*image);
  if (memoryLimit != 0 && allocatedBytes + image->imageSize > memoryLimit) {
    Fail(IPL_StsNoMem, kOperation, "the memory limit would be passed");
    return;
  }
  // Not aligned_alloc: the Windows runtime library has none.
  void* memory = std::malloc(size_t{image->imageSize} + kPixelAlignment - 1);
  if (memory == nullptr) {
    Fail(IPL_StsNoMem, kOperation, "out of memory");
    return;
  }
  allocatedBytes += image->imageSize;
  image->imageDataOrigin = static_cast<char*>(memory);
  image->imageData = AlignUp(image->imageDataOrigin);
  AdviseHugePages(image->imageDataOrigin, image->imageSize);
  if (doFill != 0) std::memset(image->imageData, fillValue, image->imageSize);
}

void iplDeallocate(IplImage* image, int32_t flags) {
  using namespace kelto::ipl;
  if (image == nullptr) return;
  if (flags & IPL_IMAGE_ROI) image->roi = nullptr;
  if (flags & IPL_IMAGE_TILE) image->tileInfo = nullptr;
  if (flags & IPL_IMAGE_MASK) {
    iplDeallocate(image->maskROI, IPL_IMAGE_ALL);
    image->maskROI = nullptr;
  }
  if (flags & (IPL_IMAGE_DATA | IPL_IMAGE_HEADER)) FreePixels(*image);
  if (flags & IPL_IMAGE_HEADER) delete image;
}

void iplxSetMemoryLimit(uint64_t bytes) { kelto::ipl::memoryLimit = bytes; }

uint64_t iplxAllocatedBytes() { return kelto::ipl::allocatedBytes; }
}
