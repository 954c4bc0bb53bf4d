// What happens after the user has changed parameters.
#pragma once

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// The effect's update-parameters callback: copies what the user set on the active key of every
/// parameter that is not animated to all its keys, carries out cache commands, couples the constant
/// velocities, and has the motion prepared anew. Returns true.
bool UpdateParams(hfxInstance_v1* instance);

/// Values of the "cache" list. Those from CacheAllFirst on reach every instance, each with the
/// value less CacheAllFirst.
enum CacheCommand : int32_t {
  CacheVideoResolution = 0,
  CacheImageResolution = 1,
  CacheMultiResolution = 2,
  FreeCurrentCache = 3,
  CacheAllFirst = 4,
  FreeAllCaches = 7,
};

/// Carries out the cache command in `cacheMode`, taken from the "cache" list first when `read` is
/// set, and leaves the list at the mode then in force. Returns true.
bool ApplyCacheCommand(PanZoomState& state, bool read);

}  // namespace kelto
