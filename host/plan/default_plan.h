// The plan that every other begins with.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// What a film of a photograph is when nothing says otherwise: five seconds of the whole photograph
/// standing still.
RenderPlan DefaultPlan(const std::string& photo);

/// Moves `plan`'s view through these, evenly spaced in time, with the usual velocities. One view is
/// held.
void SetMove(RenderPlan& plan, std::span<const View> views);

/// The same at the keys' times, whose velocities are not looked at.
void SetMove(RenderPlan& plan, std::vector<ViewKey> keys);

/// The same from one view to another.
void SetMove(RenderPlan& plan, const View& from, const View& to);

}  // namespace kelto::host
