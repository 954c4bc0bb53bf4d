#include "editor/document/document.h"

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "editor/document/picture_film.h"
#include "editor/document/tour_changes.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/plan/default_plan.h"
#include "host/project/json_patch.h"
#include "host/project/paths.h"
#include "host/project/project_file.h"
#include "host/project/show_project.h"

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

PixelSize TurnedSize(const host::RenderPlan& plan, const PixelSize& photo) {
  return plan.rotate % 180 == 0 ? photo : PixelSize{photo.height, photo.width};
}

host::RenderPlan PlanOf(const Document& document) {
  // Asked for the same again and again: by the change that makes a document, by those who show it
  // and by the next change. With 500 stops, reading takes some milliseconds.
  struct Known {
    Document document;
    host::RenderPlan plan;
  };
  static thread_local std::array<std::optional<Known>, 2> known;
  for (const std::optional<Known>& one : known) {
    if (one && one->document == document) return one->plan;
  }
  host::RenderPlan plan = host::ParsePicture(document.text, document.path, document.picture);
  known[1] = std::move(known[0]);
  known[0] = Known{document, plan};
  return plan;
}

Document Changed(const Document& document, const std::function<void(ordered_json&)>& change) {
  const ordered_json current = ordered_json::parse(document.text);
  ordered_json json = current;
  if (json.contains("pictures")) {
    ChangePicture(json, document.picture, change);
  } else {
    change(json);
  }
  Document changed{document.path, host::PatchedJson(document.text, current, json),
                   document.picture};
  PlanOf(changed);
  return changed;
}

Document MovedTo(const Document& document, const std::string& path) {
  ordered_json json = ordered_json::parse(document.text);
  const auto move = [&](ordered_json& named, const char* field) {
    if (!named.contains(field)) return;
    const std::string file = host::FromProject(document.path, named[field].get<std::string>());
    named[field] = host::ForProject(path, file);
  };
  for (const char* field : {"image", "over", "audio"}) move(json, field);
  if (json.contains("pictures")) {
    for (ordered_json& picture : json["pictures"]) move(picture, "image");
  }
  Document moved{path, host::PatchedJson(document.text, json), document.picture};
  PlanOf(moved);
  return moved;
}

}  // namespace kelto::editor
