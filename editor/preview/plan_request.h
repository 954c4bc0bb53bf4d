// A film as the process that draws gets it.
#pragma once

#include <string>
#include <vector>

#include "editor/messages/requests.h"
#include "editor/rules/fades_around.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// `deepShow` is whether the film of the show, where it is one, is drawn deep.
PlanRequest RequestOf(const host::RenderPlan& plan, const FadesAround& fades, bool deepShow);

/// What a process of this film may open, and how it turns its photo.
std::vector<std::string> FilesOf(const host::RenderPlan& plan, const FadesAround& fades);

}  // namespace kelto::editor
