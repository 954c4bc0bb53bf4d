#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/files/output_file.h"
#include "host/options/number.h"
#include "host/project/paths.h"
#include "host/project/plan_json.h"
#include "host/project/project_file.h"
#include "host/project/show_project.h"
#include "host/project/written_project.h"

namespace kelto::host {
namespace {

using nlohmann::ordered_json;

/// A picture with all that it shows.
ordered_json PictureJson(const std::string& path, const ShowPicture& picture) {
  ordered_json film = FilmJson(path, picture.plan);
  ordered_json written;
  written["image"] = film["image"];
  if (picture.each) written["each"] = *picture.each;
  if (picture.fade) written["fade"] = *picture.fade;
  written["playMode"] = film["playMode"];
  for (const char* field : {"beside", "caption", "rotate", "transparent", "linearLight"}) {
    if (film.contains(field)) written[field] = film[field];
  }
  if (picture.hasViews) {
    written["motion"] = film["motion"];
    if (film.contains("views")) written["views"] = film["views"];
  } else {
    if (!picture.move.empty()) written["move"] = picture.move;
    if (!picture.fit.empty()) written["fit"] = picture.fit;
    if (const auto amount = ParseNumber(picture.amount)) written["amount"] = *amount;
    if (!picture.motion.empty()) written["motion"] = picture.motion;
  }
  ordered_json parameters = ordered_json::object();
  for (const auto& [name, value] : film["parameters"].items()) {
    // A picture without views holds still in its plan, which is not what it says.
    if (picture.hasViews || !MovesTheView(name)) parameters[name] = value;
  }
  written["parameters"] = parameters;
  return written;
}

/// Takes what all pictures say alike out of them and says it of the show.
void SayOnce(ordered_json& show, const char* field) {
  ordered_json& pictures = show["pictures"];
  if (!pictures[0].contains(field)) return;
  const ordered_json said = pictures[0][field];
  for (const ordered_json& picture : pictures) {
    if (!picture.contains(field) || picture[field] != said) return;
  }
  for (ordered_json& picture : pictures) picture.erase(field);
  show[field] = said;
}

/// The same of each parameter.
void SayParametersOnce(ordered_json& show) {
  ordered_json& pictures = show["pictures"];
  ordered_json shared = ordered_json::object();
  for (const auto& [name, value] : pictures[0]["parameters"].items()) {
    bool same = !MovesTheView(name);
    for (const ordered_json& picture : pictures) {
      const ordered_json& own = picture["parameters"];
      same = same && own.contains(name) && own[name] == value;
    }
    if (same) shared[name] = value;
  }
  for (ordered_json& picture : pictures) {
    for (const auto& [name, ignored] : shared.items()) picture["parameters"].erase(name);
    if (picture["parameters"].empty()) picture.erase("parameters");
  }
  if (!shared.empty()) show["parameters"] = shared;
}

ordered_json ShowJson(const std::string& path, const ShowProject& show) {
  if (show.pictures.empty()) throw Error("a show has one picture at the least");
  ordered_json document;
  const RenderPlan& first = show.pictures.front().plan;
  ordered_json film = FilmJson(path, first);
  document["$schema"] = film["$schema"];
  if (!show.audio.empty()) document["audio"] = ForProject(path, show.audio);
  if (!show.title.empty()) document["title"] = show.title;
  if (!show.fadeKind.empty()) document["fadeKind"] = show.fadeKind;
  document["film"] = film["film"];
  document["film"].erase("frames");
  ordered_json pictures = ordered_json::array();
  for (const ShowPicture& picture : show.pictures) {
    if (!picture.plan.over.empty()) {
      throw Error(picture.plan.photo + ": lies over a video, which a show's project cannot say");
    }
    pictures.push_back(PictureJson(path, picture));
  }
  document["pictures"] = std::move(pictures);
  for (const char* field : {"each", "fade", "motion", "playMode", "beside", "caption", "rotate",
                            "transparent", "linearLight"}) {
    SayOnce(document, field);
  }
  SayParametersOnce(document);
  // The list stands last, where it does not come between the few shared fields.
  ordered_json ordered;
  for (const auto& [name, value] : document.items()) {
    if (name != "pictures") ordered[name] = value;
  }
  ordered["pictures"] = document["pictures"];
  return ordered;
}

}  // namespace

std::string ShowText(const std::string& path, const ShowProject& show) {
  return WrittenProject(
      path, [&] { return ShowJson(path, show); },
      [&](const std::string& text) { ParseShow(text, path); });
}

void WriteShow(const std::string& path, const ShowProject& show) {
  if (path != kStandardOutput) CheckProjectName(path);
  std::vector<std::string> sources = {show.audio};
  for (const ShowPicture& picture : show.pictures) sources.push_back(picture.plan.photo);
  WriteProjectText(path, ShowText(path, show), sources);
}

}  // namespace kelto::host
