// An instance's picture, in the cache that all instances share.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "state/image_ptr.h"

namespace kelto {

/// Levels that an instance may cache its picture at. All operations of the cache look at all of
/// them; so far only the first is ever filled, since no cache command has more than one size made.
constexpr int kCacheLevels = 8;

struct CachedPicture {
  std::array<ImagePtr, kCacheLevels> workImages;  ///< largest first; 0 non-null: loaded
  std::string imagePath;                          ///< as saved in the instance data
  uint32_t imageWidth = 0, imageHeight = 0;       ///< natural size
  int32_t cacheState = -1;       ///< 1 level 0 is natural size, 0 reduced, -1 none yet
  int32_t appliedCacheMode = 1;  ///< the cache command last carried out
  int32_t appliedLevels = 0;     ///< the Levels that the loaded image was made with
  bool loadFailed = false;       ///< keeps later renders from trying again
};

}  // namespace kelto
