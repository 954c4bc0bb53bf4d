// What of a plan settles whether its frames can be, and have to be, drawn deep.
#pragma once

#include <string>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// Why a plan's frames can come from the effect alone, with the setting's name; empty where they
/// can be drawn with 16 bits and transparency.
std::string WhyNotDeep(const RenderPlan& plan);

/// Whether the effect alone cannot draw a plan's frames, whatever its photo.
bool NeedsDeep(const RenderPlan& plan);

}  // namespace kelto::host
