// Pixel memory: attached to headers, counted, and capped on request.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/huge_pages.h"
#include "platform/ipl.h"
#include "runtime/ipl/status.h"

namespace kelto::ipl {
namespace {

constexpr const char* kOperation = "iplAllocateImage";
/// A cache line, and wide enough for any vector load.
constexpr uintptr_t kPixelAlignment = 64;

uint64_t memoryLimit = 0;
uint64_t allocatedBytes = 0;

/// The memory of images that are only counted.
char noMemory = 0;

void FreePixels(IplImage& image) {
  if (image.imageDataOrigin == nullptr) return;
  if (image.imageDataOrigin != &noMemory) std::free(image.imageDataOrigin);
  image.imageData = image.imageDataOrigin = nullptr;
  allocatedBytes -= image.imageSize;
}

/// What the pixels take with rows aligned to 8 bytes: that much is given whatever the header's
/// alignment.
size_t Room(const IplImage& image) {
  const size_t row = (static_cast<size_t>(image.widthStep) + 7) / 8 * 8;
  return row * static_cast<size_t>(image.height);
}

/// Enters what an image takes into the account. False, with the status set, when it may not have
/// that much.
bool Count(IplImage* image) {
  if (image == nullptr) {
    Fail(IPL_StsNullPtr, kOperation, "no image header");
    return false;
  }
  FreePixels(*image);
  if (memoryLimit != 0 && allocatedBytes + image->imageSize > memoryLimit) {
    Fail(IPL_StsNoMem, kOperation, "the memory limit would be passed");
    return false;
  }
  allocatedBytes += image->imageSize;
  image->imageDataOrigin = &noMemory;
  return true;
}

char* AlignUp(char* address) {
  const uintptr_t value = reinterpret_cast<uintptr_t>(address);
  return address + (kPixelAlignment - value % kPixelAlignment) % kPixelAlignment;
}

}  // namespace
}  // namespace kelto::ipl

extern "C" {

void iplAllocateImage(IplImage* image, int32_t doFill, int32_t fillValue) {
  using namespace kelto::ipl;
  if (!Count(image)) return;
  // Not aligned_alloc: the Windows runtime library has none.
  void* memory = std::malloc(Room(*image) + kPixelAlignment - 1);
  if (memory == nullptr) {
    FreePixels(*image);
    Fail(IPL_StsNoMem, kOperation, "out of memory");
    return;
  }
  image->imageDataOrigin = static_cast<char*>(memory);
  image->imageData = AlignUp(image->imageDataOrigin);
  kelto::AdviseHugePages(image->imageDataOrigin, image->imageSize);
  if (doFill != 0) std::memset(image->imageData, fillValue, image->imageSize);
}

void iplxCountImage(IplImage* image) { kelto::ipl::Count(image); }

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
