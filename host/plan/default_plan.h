// The plan that every other begins with.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// How long a film is when nothing says otherwise.
constexpr double kUsualSeconds = 5.0;

/// What a film of a photograph is when nothing says otherwise: kUsualSeconds of the whole
/// photograph standing still.
RenderPlan DefaultPlan(const std::string& photo);

/// Moves `plan`'s view through these, evenly spaced in time. One view is held.
void SetMove(RenderPlan& plan, std::span<const View> views);

/// The same from one view to another.
void SetMove(RenderPlan& plan, const View& from, const View& to);

}  // namespace kelto::host
