#include "editor/preview/plan_request.h"

#include <nlohmann/json.hpp>

#include "host/project/plan_json.h"

namespace kelto::editor {

PlanRequest RequestOf(const host::RenderPlan& plan, const FadesAround& fades, bool deepShow) {
  const auto text = [](const host::RenderPlan& one) {
    return host::FilmJson("/film.json", one).dump();
  };
  PlanRequest request{text(plan)};
  if (fades.before) request.before = text(*fades.before);
  if (fades.after) request.after = text(*fades.after);
  request.title = fades.title;
  request.numbers = {fades.in, fades.out, fades.dip ? 1 : 0, fades.titleFrames};
  if (fades.depths) request.numbers.deep = deepShow ? 1 : 0;
  return request;
}

std::vector<std::string> FilesOf(const host::RenderPlan& plan, const FadesAround& fades) {
  return {plan.photo, plan.over, fades.before ? fades.before->photo : "",
          fades.after ? fades.after->photo : "", std::to_string(plan.rotate)};
}

}  // namespace kelto::editor
