// Who accounts for the memory of cached images, and how such images are given back.
#pragma once

#include "platform/ipl.h"

namespace kelto {

/// Keeps account of image memory. An image's header points to its pool through `imageId`.
class BufferPool {
 public:
  virtual ~BufferPool() = default;
  /// Takes the image off the account; frees nothing.
  virtual void Release(IplImage* image) = 0;
};

/// The pool of all cached images of this process (Module().cachePool).
class CacheBufferPool final : public BufferPool {
 public:
  void Release(IplImage* image) override;
};

/// Enters `image`, whose pixels were just allocated, into the account of the cache's pool.
void EnterIntoCachePool(IplImage* image);

/// Takes an image off its pool's account, if it has one, and frees header, pixels and all else.
/// Null is allowed.
void ReleaseImage(IplImage* image);

}  // namespace kelto
