#include "state/pool.h"

#include "state/module.h"

namespace kelto {

void CacheBufferPool::Release(IplImage* image) { Module().cachedBytes -= image->imageSize; }

void EnterIntoCachePool(IplImage* image) {
  // Through the base: ReleaseImage reads it back as one.
  image->imageId = static_cast<BufferPool*>(&Module().cachePool);
  Module().cachedBytes += image->imageSize;
}

void ReleaseImage(IplImage* image) {
  if (image == nullptr) return;
  if (image->imageId != nullptr) static_cast<BufferPool*>(image->imageId)->Release(image);
  iplDeallocate(image, IPL_IMAGE_ALL);
}

}  // namespace kelto
