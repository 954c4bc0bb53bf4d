#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/options/number.h"
#include "host/project/diagnostic.h"
#include "host/project/json_text.h"
#include "host/project/memory_reserve.h"
#include "host/project/plan_json.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"
#include "host/project/show_project.h"

namespace kelto::host {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

bool IsShow(const json& document) { return document.is_object() && document.contains("pictures"); }

/// Fields that belong to a single film.
void RefuseFilmsFields(const json& document) {
  for (const char* field : {"views", "over", "loop"}) {
    if (document.contains(field)) {
      throw Error(std::string(field) +
                  ": a show has none of its own; say it of a picture or of "
                  "a project of one");
    }
  }
  for (const char* length : {"seconds", "frames"}) {
    if (document.contains("film") && document["film"].contains(length)) {
      throw Error(ToString({"film", length}) +
                  ": a show is as long as its pictures are seen; give \"each\"");
    }
  }
}

/// Throws for parameters that a show cannot say of all its pictures: they have a value each.
void CheckShared(const json& parameters) {
  for (const auto& [name, given] : parameters.items()) {
    if (given.is_array() || MovesTheView(name)) {
      throw Error(ToString({"parameters", name}) +
                  (given.is_array() ? ": a show's own parameters have no keys; say it of a picture"
                                    : ": says where a film looks; say it of a picture"));
    }
  }
}

/// What a picture says, or else the show; null where neither does.
template <typename Json>
const Json* SaidOf(const Json& show, const Json& picture, const char* field) {
  for (const Json* said : {&picture, &show}) {
    if (const auto found = said->find(field); found != said->end()) return &*found;
  }
  return nullptr;
}

/// See FilmOfPicture.
template <typename Json>
Json FilmAt(const Json& show, size_t index) {
  const Json& picture = show["pictures"][index];
  Json film = picture;
  for (const char* field : {"each", "fade", "move", "fit", "amount"}) film.erase(field);
  if (show.contains("film")) film["film"] = show["film"];
  if (const Json* each = SaidOf(show, picture, "each")) film["film"]["seconds"] = *each;
  for (const char* field :
       {"motion", "playMode", "beside", "caption", "rotate", "transparent", "linearLight"}) {
    if (const Json* said = SaidOf(show, picture, field)) film[field] = *said;
  }
  if (show.contains("parameters")) {
    Json parameters = show["parameters"];
    if (picture.contains("parameters")) parameters.update(picture["parameters"]);
    film["parameters"] = parameters;
  }
  return film;
}

std::string WordOf(const json* value) {
  if (value == nullptr) return "";
  return value->is_string() ? value->get<std::string>() : NumberText(value->get<double>());
}

std::optional<double> SecondsOf(const json* value) {
  return value != nullptr ? std::optional(value->get<double>()) : std::nullopt;
}

bool SaysWhereItLooks(const json& film) {
  if (film.contains("views")) return true;
  const json parameters = film.value("parameters", json::object());
  for (const auto& [name, ignored] : parameters.items()) {
    if (MovesTheView(name)) return true;
  }
  return false;
}

/// Throws where a picture says twice where its film looks.
void CheckMove(const json& film, const json& picture) {
  if (!picture.contains("move")) return;
  const json parameters = film.value("parameters", json::object());
  for (const auto& [name, ignored] : parameters.items()) {
    if (!MovesTheView(name)) continue;
    throw Error("move: says where the film looks, and so does " + ToString({"parameters", name}) +
                "; leave one of them out");
  }
}

ShowPicture ReadPicture(const json& show, size_t index, const std::string& path) {
  const json& said = show["pictures"][index];
  const json film = FilmOfPicture(show, index);
  CheckMove(film, said);
  ShowPicture picture{PlanOfFilm(film, path)};
  picture.hasViews = SaysWhereItLooks(film);
  picture.each = SecondsOf(SaidOf(show, said, "each"));
  picture.fade = SecondsOf(SaidOf(show, said, "fade"));
  if (!picture.each && HasTimes(picture.plan.views)) {
    picture.each = host::SecondsOf(picture.plan.views);
  }
  if (picture.hasViews) return picture;
  picture.move = WordOf(SaidOf(show, said, "move"));
  picture.fit = WordOf(SaidOf(show, said, "fit"));
  picture.amount = WordOf(SaidOf(show, said, "amount"));
  picture.motion = WordOf(SaidOf(show, said, "motion"));
  return picture;
}

std::string AudioOf(const json& document, const std::string& path) {
  if (!document.contains("audio")) return "";
  // As a film's own, so that the same is wrong with it.
  return PlanOfFilm({{"image", "."}, {"audio", document["audio"]}}, path).audio;
}

ShowProject ShowOf(const json& document, const std::string& path) {
  CheckProject(document);
  if (!IsShow(document)) {
    throw Error("image: this is a project of one picture, not a slideshow's");
  }
  RefuseFilmsFields(document);
  CheckFilm(document.value("film", json::object()));
  CheckShared(document.value("parameters", json::object()));
  ShowProject show;
  show.audio = AudioOf(document, path);
  show.title = ReadLetters(document, "title");
  show.fadeKind = document.value("fadeKind", "");
  const size_t count = document["pictures"].size();
  show.pictures.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    try {
      show.pictures.push_back(ReadPicture(document, i, path));
    } catch (const Error& error) {
      throw Error(ToString({"pictures", IndexStep(i)}) + "." + error.what());
    }
  }
  return show;
}

/// What `read` makes of the document in a file's text.
template <typename Read>
auto ReadDocumentOf(const std::string& text, const std::string& path, Read read) {
  const MemoryReserve reserve(text.size());
  try {
    return read(ParseJson(text));
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
}

}  // namespace

json FilmOfPicture(const json& show, size_t index) { return FilmAt(show, index); }

ordered_json FilmOfPicture(const ordered_json& show, size_t index) { return FilmAt(show, index); }

RenderPlan ParsePicture(const std::string& text, const std::string& path, size_t index) {
  return ReadDocumentOf(text, path, [&](const json& document) {
    CheckProject(document);
    if (!IsShow(document)) {
      RefuseShowsFields(document);
      return PlanOfFilm(document, path);
    }
    RefuseFilmsFields(document);
    CheckShared(document.value("parameters", json::object()));
    const size_t last = document["pictures"].size() - 1;
    RenderPlan plan = ReadPicture(document, std::min(index, last), path).plan;
    plan.audio = AudioOf(document, path);
    return plan;
  });
}

bool IsShowText(const std::string& text, const std::string& path) {
  return ReadDocumentOf(text, path, IsShow);
}

ShowProject ParseShow(const std::string& text, const std::string& path) {
  return ReadDocumentOf(text, path, [&](const json& document) { return ShowOf(document, path); });
}

std::optional<ShowProject> ReadShow(const std::string& path) {
  return ReadDocumentOf(ReadProjectText(path), path,
                        [&](const json& document) -> std::optional<ShowProject> {
                          if (!IsShow(document)) return std::nullopt;
                          return ShowOf(document, path);
                        });
}

}  // namespace kelto::host
