// What happens after the user has changed parameters.
#pragma once

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// The effect's update-parameters callback: copies what the user set on the active key of every
/// parameter that is not animated to all its keys, carries out cache commands, couples the constant
/// velocities, and has the motion prepared anew. Returns true.
bool UpdateParams(hfxInstance_v1* instance);

/// Values of the "cache" list. Those from kCacheAllFirst on reach every instance, each with the
/// value less kCacheAllFirst.
enum CacheCommand : int32_t {
  kCacheVideoResolution = 0,
  kCacheImageResolution = 1,
  kCacheMultiResolution = 2,
  kFreeCurrentCache = 3,
  kCacheAllFirst = 4,
  kFreeAllCaches = 7,
};

/// Carries out the cache command in `cacheMode`, taken from the "cache" list first when `read` is
/// set, and leaves the list at the mode then in force. Returns true.
bool ApplyCacheCommand(PanZoomState& state, bool read);

}  // namespace kelto
