// The photograph with all its bits and its transparency, which the effect does not see.
#pragma once

#include <cstdint>

#include "deep/picture.h"
#include "host/effect/photo.h"

namespace kelto::host {

/// Notes the photo's depth and what loading it with all its bits takes; one that is too large for
/// that counts as one of eight bits.
void FindDepth(Photo& photo);

/// Whether any of its pixels lets something through; decodes it where it may have such pixels.
/// Throws Error.
bool IsTransparent(const Photo& photo);

/// All of it. Throws Error that names the photo, and std::bad_alloc.
DeepPicture ReadDeepPhoto(const Photo& photo);

}  // namespace kelto::host
