#include "editor/document/picture_film.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "host/base/error.h"
#include "host/plan/tour.h"
#include "host/project/show_project.h"
#include "host/project/tour_json.h"

namespace kelto::editor {
namespace {

using nlohmann::ordered_json;

const ordered_json* FieldOf(const ordered_json& object, const std::string& name) {
  const auto found = object.find(name);
  return found == object.end() ? nullptr : &*found;
}

/// Whether a field differs; both may lack it.
bool Differs(const ordered_json& before, const ordered_json& after, const std::string& name) {
  const ordered_json *was = FieldOf(before, name), *is = FieldOf(after, name);
  if (was == nullptr || is == nullptr) return was != is;
  return *was != *is;
}

void Take(ordered_json& object, const ordered_json& after, const std::string& name) {
  if (const ordered_json* value = FieldOf(after, name)) {
    object[name] = *value;
  } else {
    object.erase(name);
  }
}

ordered_json ObjectOf(const ordered_json& document, const char* name) {
  const ordered_json* object = FieldOf(document, name);
  return object != nullptr ? *object : ordered_json::object();
}

/// The names in either of two objects.
std::vector<std::string> NamesOf(const ordered_json& a, const ordered_json& b) {
  std::vector<std::string> names;
  for (const ordered_json* object : {&b, &a}) {
    for (const auto& [name, ignored] : object->items()) {
      if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
  }
  return names;
}

/// How long a picture is seen whose film says nothing of its length.
void FollowViews(ordered_json& picture, const ordered_json& film) {
  picture.erase("each");
  if (!film.contains("views")) return;
  const std::vector<host::TourView> views = host::ReadTour(film["views"]);
  if (host::HasTimes(views)) {
    picture["each"] = std::round(host::SecondsOf(views) * 1000.0) / 1000.0;
  }
}

void TakeFilm(ordered_json& show, ordered_json& picture, const ordered_json& before,
              const ordered_json& after) {
  const ordered_json was = ObjectOf(before, "film"), is = ObjectOf(after, "film");
  for (const std::string& name : NamesOf(was, is)) {
    if (name == "seconds" || !Differs(was, is, name)) continue;
    Take(show["film"], is, name);
  }
  if (const ordered_json* seconds = FieldOf(is, "seconds")) {
    if (Differs(was, is, "seconds")) picture["each"] = *seconds;
  } else if (was.contains("seconds") || Differs(before, after, "views")) {
    FollowViews(picture, after);
  }
}

void TakeParameters(ordered_json& show, ordered_json& picture, const ordered_json& before,
                    const ordered_json& after) {
  const ordered_json was = ObjectOf(before, "parameters"), is = ObjectOf(after, "parameters");
  for (const std::string& name : NamesOf(was, is)) {
    if (!Differs(was, is, name)) continue;
    const ordered_json* value = FieldOf(is, name);
    const bool own = ObjectOf(picture, "parameters").contains(name);
    const bool shared = ObjectOf(show, "parameters").contains(name);
    const bool oneValue = value != nullptr && value->is_object();
    if (shared && !own && oneValue) {
      show["parameters"][name] = *value;
    } else if (value != nullptr) {
      picture["parameters"][name] = *value;
    } else if (shared) {
      picture["parameters"][name] = ordered_json::object();
    } else if (own) {
      picture["parameters"].erase(name);
    }
  }
}

void TakeCaption(ordered_json& show, size_t at, const ordered_json& after) {
  if (show.contains("caption") && !after.contains("caption")) {
    // One for all pictures becomes one for each of the others: none is empty.
    for (ordered_json& picture : show["pictures"]) {
      if (!picture.contains("caption")) picture["caption"] = show["caption"];
    }
    show.erase("caption");
  }
  Take(show["pictures"][at], after, "caption");
}

}  // namespace

void ChangePicture(ordered_json& show, size_t index,
                   const std::function<void(ordered_json& film)>& change) {
  const size_t at = std::min(index, show["pictures"].size() - 1);
  ordered_json before = host::FilmOfPicture(show, at);
  // The sound of all pictures, so that it can be changed and taken away.
  Take(before, show, "audio");
  ordered_json after = before;
  change(after);
  if (after.contains("over")) {
    throw host::Error("a picture of a slideshow lies over no video; make a film of it alone");
  }
  ordered_json& picture = show["pictures"][at];
  for (const char* name : {"image", "motion", "playMode", "views"}) {
    if (!Differs(before, after, name)) continue;
    Take(picture, after, name);
    if (std::string(name) != "views") continue;
    for (const char* move : {"move", "fit", "amount"}) picture.erase(move);
  }
  if (Differs(before, after, "caption")) TakeCaption(show, at, after);
  TakeFilm(show, picture, before, after);
  TakeParameters(show, picture, before, after);
  if (Differs(before, after, "audio")) Take(show, after, "audio");
}

}  // namespace kelto::editor
