// Plays a plan in a window, as an editor plays its timeline.
#pragma once

#include <string>

#include "host/base/library.h"
#include "host/effect/photo.h"
#include "host/plan/render_plan.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {

/// The library that opens windows.
Libraries WindowLibraries();

struct PlayerOptions {
  bool loop = false;    ///< start over at the end, else pause
  bool paused = false;  ///< begin paused
};

/// Plays until the user quits. The effect renders for playing, so that it draws from a copy of
/// `photo`, the plan's, of the frame's size; at half quality where it would not keep up; and frames
/// that come too late are skipped. Paused, frames are of full quality. Enters the sandbox as soon
/// as there is a window, which needs what the sandbox refuses; `access` holds from then on. Throws
/// Error.
void PlayInWindow(const std::string& modulePath, const RenderPlan& plan, const Photo& photo,
                  const SandboxAccess& access, const PlayerOptions& options);

}  // namespace kelto::host
