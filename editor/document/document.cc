#include "editor/document/document.h"

#include <nlohmann/json.hpp>

#include "editor/document/tour_changes.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/plan/default_plan.h"
#include "host/project/json_patch.h"
#include "host/project/paths.h"
#include "host/project/project_file.h"

namespace kelto::editor {

using nlohmann::ordered_json;

Document NewDocument(const std::string& photo, const PixelSize& size, const std::string& path) {
  host::RenderPlan plan = host::DefaultPlan(photo);
  plan.motion = host::MotionLaw::kSteady;
  plan.SetTour({{View{}}, {View{}}});
  const Document still{path, host::ProjectText(path, plan)};
  return WithMove(still, size, "in");
}

std::string ProjectBeside(const std::string& photo) {
  return host::TextOf(host::PathOf(photo).replace_extension(".json"));
}

Document ReadDocument(const std::string& path) {
  Document document{path, host::ReadProjectText(path)};
  PlanOf(document);
  return document;
}

void WriteDocument(const Document& document) {
  host::CheckProjectName(document.path);
  PlanOf(document);
  host::OutputFile file(document.path);
  file.Write(document.text.data(), document.text.size());
  file.Finish();
}

host::RenderPlan PlanOf(const Document& document) {
  return host::ParseProject(document.text, document.path);
}

Document Changed(const Document& document, const std::function<void(ordered_json&)>& change) {
  ordered_json json = ordered_json::parse(document.text);
  change(json);
  Document changed{document.path, host::PatchedJson(document.text, json)};
  PlanOf(changed);
  return changed;
}

Document MovedTo(const Document& document, const std::string& path) {
  const host::RenderPlan plan = PlanOf(document);
  Document moved = Changed({path, document.text}, [&](ordered_json& json) {
    json["image"] = host::ForProject(path, plan.photo);
    if (!plan.over.empty()) json["over"] = host::ForProject(path, plan.over);
    if (!plan.audio.empty()) json["audio"] = host::ForProject(path, plan.audio);
  });
  return moved;
}

}  // namespace kelto::editor
