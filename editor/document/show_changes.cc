#include "editor/document/show_changes.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "editor/document/show_fades.h"
#include "editor/document/tour_changes.h"
#include "host/base/error.h"
#include "host/moves/presets.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/options/usual_times.h"
#include "host/plan/default_plan.h"
#include "host/project/json_patch.h"
#include "host/project/paths.h"
#include "host/project/show_project.h"
#include "host/project/tour_json.h"
#include "host/track/photo_views.h"

namespace kelto::editor {
namespace {

using nlohmann::ordered_json;

/// Of moves that nobody asked for by name.
constexpr double kGentleAmount = 1.25;

double Rounded(double value) { return std::round(value * 1000.0) / 1000.0; }

ordered_json& PicturesIn(ordered_json& show) {
  if (!show.contains("pictures")) throw host::Error("this is a film of one picture");
  return show["pictures"];
}

ordered_json& PictureAt(ordered_json& show, size_t at) {
  ordered_json& pictures = PicturesIn(show);
  if (at >= pictures.size()) throw host::Error("there is no such picture");
  return pictures[at];
}

/// The document after `change` of the whole JSON, with `picture` being edited.
Document Rewritten(const Document& document, size_t picture,
                   const std::function<void(ordered_json&)>& change) {
  const ordered_json current = ordered_json::parse(document.text);
  ordered_json json = current;
  change(json);
  Document changed{document.path, host::PatchedJson(document.text, current, json), picture};
  host::ParseShow(changed.text, changed.path);
  return changed;
}

/// First and last view of a picture, by what is said of its move; `turn` is its place in the show.
ordered_json ViewsOfMove(const host::ShowPicture& said, size_t turn, const PhotoSizes& sizes) {
  const host::PhotoViews views(said.plan, TurnedSize(said.plan, sizes(said.plan.photo)));
  std::string name = said.move;
  bool backwards = false;
  std::optional<double> amount = host::ParseNumber(said.amount);
  if ((name.empty() || name == "mixed") && !amount) amount = kGentleAmount;
  if (name == "mixed") {
    const host::MixedMove mixed = host::MixedMoveAt(views, static_cast<int32_t>(turn));
    name = mixed.name;
    backwards = mixed.backwards;
  }
  // Looking for what is eye-catching takes decoding the photo.
  if (name.empty() || name == "auto") name = "in";
  const host::Fit fit = said.fit.empty() ? host::Fit::kFill : host::ParseFit(said.fit);
  std::vector<host::PhotoRect> parts = host::MoveViews(views, name, fit, amount);
  if (backwards) std::reverse(parts.begin(), parts.end());
  std::vector<host::TourView> tour;
  for (const host::PhotoRect& part : parts) {
    tour.push_back({host::PhotoRect{Rounded(part.x), Rounded(part.y), Rounded(part.width),
                                    Rounded(part.height)}});
  }
  ordered_json json = host::JsonOf(tour);
  // Pictures of a show are moving when they come and while they go.
  for (ordered_json& view : json) view["in"] = view["out"] = "linear";
  return json;
}

void GiveViews(ordered_json& show, size_t at, const host::ShowPicture& said,
               const PhotoSizes& sizes) {
  ordered_json& picture = show["pictures"][at];
  const ordered_json views = ViewsOfMove(said, at, sizes);
  for (const char* field : {"move", "fit", "amount"}) picture.erase(field);
  if (said.motion.empty()) picture["motion"] = "steady";
  picture["views"] = views;
}

/// Gives views to the pictures that have none.
void GiveViews(ordered_json& show, const std::string& path, const PhotoSizes& sizes) {
  const host::ShowProject read = host::ParseShow(show.dump(), path);
  for (size_t i = 0; i < read.pictures.size(); ++i) {
    if (!read.pictures[i].hasViews) GiveViews(show, i, read.pictures[i], sizes);
  }
  // They were of pictures that have views now.
  for (const char* field : {"move", "fit", "amount"}) show.erase(field);
}

/// A project of one picture as a show.
void MakeShow(ordered_json& json) {
  if (json.contains("pictures")) return;
  if (json.contains("over")) {
    throw host::Error("a film over a video is no slideshow; take the video away first");
  }
  ordered_json picture;
  for (const char* field : {"image", "motion", "playMode", "caption", "views"}) {
    if (!json.contains(field)) continue;
    picture[field] = json[field];
    json.erase(field);
  }
  if (json.contains("film")) {
    ordered_json& film = json["film"];
    if (film.contains("seconds")) picture["each"] = film["seconds"];
    film.erase("seconds");
  }
  if (json.contains("parameters")) {
    picture["parameters"] = json["parameters"];
    json.erase("parameters");
  }
  json["pictures"] = ordered_json::array({picture});
}

}  // namespace

bool IsShow(const Document& document) {
  // Most documents are of one picture: that is seen without reading them.
  return document.text.find("\"pictures\"") != std::string::npos &&
         host::IsShowText(document.text, document.path);
}

std::shared_ptr<const host::ShowProject> ShowOf(const Document& document) {
  // Several ask for the same; with hundreds of pictures, reading takes some milliseconds.
  struct Known {
    std::string path, text;
    std::shared_ptr<const host::ShowProject> show;
  };
  static thread_local Known known;
  if (known.show != nullptr && known.text == document.text && known.path == document.path) {
    return known.show;
  }
  if (!IsShow(document)) return nullptr;
  auto show =
      std::make_shared<const host::ShowProject>(host::ParseShow(document.text, document.path));
  known = {document.path, document.text, show};
  return show;
}

std::vector<PictureEntry> PicturesOf(const Document& document) {
  std::vector<PictureEntry> entries;
  const auto read = ShowOf(document);
  if (read == nullptr) return entries;
  const host::ShowProject& show = *read;
  const host::ShowPicture& first = show.pictures.front();
  const host::FrameRate rate = first.plan.format.rate;
  int64_t begin = 0;
  if (!show.title.empty()) {
    const int32_t card = host::FramesOf(host::kTitleSeconds, rate);
    begin = card - FadeOf(first, card, first.plan.frames);  // the card's is the first picture's
  }
  for (size_t i = 0; i < show.pictures.size(); ++i) {
    const host::ShowPicture& picture = show.pictures[i];
    const int32_t frames = picture.plan.frames;
    entries.push_back({picture.plan.photo, frames / picture.plan.format.rate.PerSecond(),
                       picture.fade, static_cast<double>(begin) / rate.PerSecond()});
    if (i + 1 == show.pictures.size()) break;
    begin += frames - FadeOf(picture, frames, show.pictures[i + 1].plan.frames);
  }
  return entries;
}

Document NewShow(const std::vector<std::string>& photos, const std::string& path,
                 const PhotoSizes& sizes) {
  host::ShowProject show;
  for (const std::string& photo : photos) {
    host::ShowPicture picture{host::DefaultPlan(photo)};
    picture.move = "mixed";
    picture.each = host::kUsualSeconds;
    picture.fade = host::kUsualFadeSeconds;
    show.pictures.push_back(std::move(picture));
  }
  const Document moves{path, host::ShowText(path, show)};
  const Document views = WithMovesAsViews(moves, sizes);
  // Laid out as a new file, not as a change of one.
  host::ShowProject made = host::ParseShow(views.text, path);
  return {path, host::ShowText(path, made)};
}

std::vector<std::string> PhotosWithoutViews(const Document& document) {
  std::vector<std::string> photos;
  const auto show = ShowOf(document);
  if (show == nullptr) return photos;
  for (const host::ShowPicture& picture : show->pictures) {
    if (!picture.hasViews) photos.push_back(picture.plan.photo);
  }
  return photos;
}

Document WithMovesAsViews(const Document& document, const PhotoSizes& sizes) {
  if (PhotosWithoutViews(document).empty()) return document;
  return Rewritten(document, document.picture,
                   [&](ordered_json& json) { GiveViews(json, document.path, sizes); });
}

Document WithPhotosAdded(const Document& document, size_t at,
                         const std::vector<std::string>& photos, const PhotoSizes& sizes) {
  if (photos.empty()) return document;
  const size_t count = IsShow(document) ? PicturesOf(document).size() : 1;
  const size_t begin = std::min(at, count);
  // A project may say its length in frames, which a show cannot.
  const host::RenderPlan plan = PlanOf(document);
  const double seconds = plan.frames / plan.format.rate.PerSecond();
  return Rewritten(document, begin, [&](ordered_json& json) {
    if (json.contains("film") && json["film"].contains("frames")) {
      json["film"].erase("frames");
      json["film"]["seconds"] = Rounded(seconds);
    }
    MakeShow(json);
    ordered_json& pictures = json["pictures"];
    for (size_t i = 0; i < photos.size(); ++i) {
      ordered_json picture = {{"image", host::ForProject(document.path, photos[i])},
                              {"move", "mixed"}};
      pictures.insert(pictures.begin() + static_cast<ptrdiff_t>(begin + i), picture);
    }
    GiveViews(json, document.path, sizes);
  });
}

Document WithoutPicture(const Document& document, size_t at) {
  const size_t edited = document.picture > at ? document.picture - 1 : document.picture;
  return Rewritten(document, edited, [&](ordered_json& json) {
    PictureAt(json, at);
    ordered_json& pictures = json["pictures"];
    if (pictures.size() == 1) throw host::Error("a show has one picture at the least");
    pictures.erase(pictures.begin() + static_cast<ptrdiff_t>(at));
  });
}

Document WithPictureMoved(const Document& document, size_t from, size_t to) {
  return Rewritten(document, to, [&](ordered_json& json) {
    const ordered_json picture = PictureAt(json, from);
    PictureAt(json, to);
    ordered_json& pictures = json["pictures"];
    pictures.erase(pictures.begin() + static_cast<ptrdiff_t>(from));
    pictures.insert(pictures.begin() + static_cast<ptrdiff_t>(to), picture);
  });
}

Document WithEach(const Document& document, size_t at, double seconds) {
  return Rewritten(document, document.picture,
                   [&](ordered_json& json) { PictureAt(json, at)["each"] = Rounded(seconds); });
}

Document WithFade(const Document& document, size_t at, double seconds) {
  return Rewritten(document, document.picture,
                   [&](ordered_json& json) { PictureAt(json, at)["fade"] = Rounded(seconds); });
}

Document WithTitle(const Document& document, const std::string& text) {
  return Rewritten(document, document.picture, [&](ordered_json& json) {
    PictureAt(json, document.picture);  // throws for a film of one picture
    if (text.empty()) {
      json.erase("title");
    } else {
      json["title"] = text;
    }
  });
}

Document PictureAlone(const Document& document) {
  if (!IsShow(document)) return document;
  const ordered_json show = ordered_json::parse(document.text);
  const size_t at = std::min(document.picture, show["pictures"].size() - 1);
  return {document.path, host::FilmOfPicture(show, at).dump(2)};
}

}  // namespace kelto::editor
