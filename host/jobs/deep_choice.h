// Whether a film's frames come from the effect, in eight bits, or from the command's own engine.
#pragma once

#include <cstdint>

#include "host/effect/photo.h"
#include "host/film/formats.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Throws UsageError for what is asked of the film's depth and transparency that it cannot have,
/// whatever the photo; `depth` is 0 where nothing is asked.
void CheckDepth(const FilmKind& kind, const RenderPlan& plan, int32_t depth,
                const FilmRequest& request);

/// Settles `depth`, `deep` and `transparent` of a request that CheckDepth let pass. Films of photos
/// of eight bits without transparency come from the effect, unless more is asked for. Throws Error
/// for a photo that is too large to be read with all its bits.
void ChooseDepth(const FilmKind& kind, const RenderPlan& plan, const Photo& photo, int32_t depth,
                 FilmRequest& request);

/// Throws UsageError for a film of several pictures that would have to be deep: its frames are
/// those of the effect.
void CheckEffectDraws(const FilmKind& kind, const RenderPlan& plan);

}  // namespace kelto::host
