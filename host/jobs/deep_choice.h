// Whether a film's frames come from the effect, in eight bits, or from the command's own engine.
#pragma once

#include <cstdint>
#include <span>

#include "host/effect/photo.h"
#include "host/film/formats.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Throws UsageError for what is asked of the film's depth and transparency that it cannot have,
/// whatever its photos; `plans` are those of its pictures, and `depth` is 0 where nothing is asked.
void CheckDepth(const FilmKind& kind, std::span<const RenderPlan> plans, int32_t depth,
                const FilmRequest& request);

/// Settles `depth`, `deep` and `transparent` of a request that CheckDepth let pass; `photos` are
/// those of the plans. Films of photos of eight bits without transparency come from the effect,
/// unless more is asked for; where one picture of several needs more, all are drawn deep. Throws
/// Error for a photo that is too large to be read with all its bits.
void ChooseDepth(const FilmKind& kind, std::span<const RenderPlan> plans,
                 std::span<const Photo> photos, int32_t depth, FilmRequest& request);

}  // namespace kelto::host
