// Ownership of image-library images.
#pragma once

#include <memory>

#include "platform/ipl.h"
#include "state/pool.h"

namespace kelto {

struct ImageRelease {
  void operator()(IplImage* image) const { ReleaseImage(image); }
};
/// Owns an image: its memory goes, and its entry in the cache's account.
using ImagePtr = std::unique_ptr<IplImage, ImageRelease>;

}  // namespace kelto
