// What the command learns of a photograph before it is rendered. Decoders read it in a process that
// may write nowhere (see host/processes/reader_process.h); this one sees numbers.
#pragma once

#include <string>

#include "host/effect/photo.h"

namespace kelto::host {

/// OpenPhoto in a process of its own. Throws Error when there is no such picture.
Photo LookAtPhoto(const std::string& name);

/// The same, and finds out whether the photo is transparent anywhere, for which it may have to be
/// decoded: what IsDrawnDeep asks for.
Photo LookThroughPhoto(const std::string& name);

/// The same; and warns of what the photo will be shown without (see FindFlaw and Warn).
Photo CheckPhoto(const std::string& name);

/// The same, and decodes all of it in eight bits, so that one whose file ends early
/// is found out before the work on a film of many begins.
Photo CheckWholePhoto(const std::string& name);

}  // namespace kelto::host
