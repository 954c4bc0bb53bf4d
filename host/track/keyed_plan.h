// A plan's list of views as keys of the effect's parameters.
#pragma once

#include "framing/pixel_size.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// `plan` with keys in place of its list of views, over a photo of this size in pixels, upright; a
/// plan that has no such list as it is. A view of which nothing is said is reached and left with
/// ease, but passed without a stop where the way is smooth and does not pause there. Throws Error,
/// "views[N].view: ...", for a part of the photo that the effect cannot show.
RenderPlan KeyedPlan(const RenderPlan& plan, PixelSize photo);

}  // namespace kelto::host
