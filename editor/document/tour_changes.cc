#include "editor/document/tour_changes.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/moves/presets.h"
#include "host/options/choices.h"
#include "host/project/tour_json.h"
#include "host/track/photo_views.h"
#include "host/track/planned_stops.h"
#include "host/track/view_track.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;
using host::RenderPlan;
using host::TourView;
using nlohmann::ordered_json;

using Tour = std::vector<TourView>;

constexpr double kUsualGo = 2.0;

/// To a thousandth: of a pixel and of a second, which nobody sees and everybody can read.
double Rounded(double value) { return std::round(value * 1000.0) / 1000.0; }

PhotoRect Rounded(const PhotoRect& part) {
  return {Rounded(part.x), Rounded(part.y), Rounded(part.width), Rounded(part.height)};
}

double SecondsOfFilm(const RenderPlan& plan) { return plan.frames / plan.format.rate.PerSecond(); }

/// The document's list of views after `change`, whose times are the real ones.
template <typename Change>
Document WithChangedTour(const Document& document, bool timed, Change change) {
  const RenderPlan plan = PlanOf(document);
  if (plan.views.empty()) throw host::Error("the film has keys; make them views first");
  Tour tour = timed ? TimedTour(plan) : plan.views;
  change(tour);
  // A gesture ends with what it changed last.
  if (!timed && tour == plan.views) return document;
  return WithTour(document, tour, timed);
}

}  // namespace

std::vector<PhotoRect> PartsOf(const RenderPlan& plan, PixelSize photo) {
  const host::PhotoViews views(plan, photo);
  std::vector<PhotoRect> parts;
  parts.reserve(plan.views.size());
  for (const View& view : views.ViewsOf(plan.views)) parts.push_back(views.PartOf(view));
  return parts;
}

Tour TimedTour(const RenderPlan& plan) {
  Tour tour = plan.views;
  if (tour.empty()) return tour;
  const double film = SecondsOfFilm(plan);
  if (tour.size() == 1) {
    tour[0].hold = film;
    return tour;
  }
  const double said = host::SecondsOf(tour);
  // A film is whole frames long, its times need not be: they are not scaled for that.
  const bool asSaid = std::abs(said - film) * plan.format.rate.PerSecond() < 1.0;
  const double scale = asSaid ? 1.0 : film / said;
  for (size_t i = 0; i < tour.size(); ++i) {
    const bool last = i + 1 == tour.size();
    if (!last && tour[i].go <= 0.0) tour[i].go = kUsualGo;
    tour[i].hold *= scale;
    tour[i].go = last ? 0.0 : std::max(tour[i].go * scale, host::kShortestGo);
  }
  return tour;
}

Document WithTour(const Document& document, const Tour& tour, bool timed) {
  return Changed(document, [&](ordered_json& json) {
    Tour written = tour;
    for (TourView& one : written) {
      one.hold = std::min(Rounded(one.hold), host::kLongestTime);
      if (one.go > 0.0) one.go = std::clamp(Rounded(one.go), host::kShortestGo, host::kLongestTime);
    }
    if (!written.empty()) written.back().go = 0.0;
    json["views"] = host::JsonOf(written);
    if (timed && json.contains("film")) {
      json["film"].erase("frames");
      json["film"].erase("seconds");
    }
  });
}

Document WithPart(const Document& document, size_t index, const PhotoRect& part) {
  return WithChangedTour(document, false, [&](Tour& tour) { tour.at(index).view = Rounded(part); });
}

Document WithStopAfter(const Document& document, size_t after, const PhotoRect& part) {
  return WithChangedTour(document, true, [&](Tour& tour) {
    TourView stop{Rounded(part)};
    const size_t before = std::min(after, tour.size() - 1);
    // The film of a single view was all hold.
    if (tour.size() == 1) tour[0].hold = std::max(0.0, tour[0].hold - kUsualGo);
    stop.go = tour[before].go;
    tour[before].go = kUsualGo;
    tour.insert(tour.begin() + static_cast<ptrdiff_t>(before) + 1, stop);
  });
}

Document WithoutStop(const Document& document, size_t index) {
  return WithChangedTour(document, true, [&](Tour& tour) {
    if (tour.size() == 1) throw host::Error("a film has one view at the least");
    const TourView gone = tour.at(index);
    tour.erase(tour.begin() + static_cast<ptrdiff_t>(index));
    if (tour.size() == 1) {
      tour[0].hold += gone.hold + gone.go + tour[0].go;
    } else if (index == 0) {
      tour[0].hold += gone.hold + gone.go;
    } else if (index == tour.size()) {
      tour.back().hold += tour.back().go + gone.hold;
    } else {
      tour[index - 1].go += gone.hold + gone.go;
    }
  });
}

Document WithTimes(const Document& document, const std::vector<std::pair<double, double>>& times) {
  return WithChangedTour(document, true, [&](Tour& tour) {
    for (size_t i = 0; i < std::min(tour.size(), times.size()); ++i) {
      tour[i].hold = std::max(0.0, times[i].first);
      tour[i].go = i + 1 < tour.size() ? std::max(times[i].second, host::kShortestGo) : 0.0;
    }
  });
}

Document WithEndsSwapped(const Document& document) {
  return WithChangedTour(document, false,
                         [](Tour& tour) { std::swap(tour.front().view, tour.back().view); });
}

Document WithTourReversed(const Document& document) {
  const bool timed = host::HasTimes(PlanOf(document).views);
  return WithChangedTour(document, timed, [](Tour& tour) {
    Tour reversed(tour.rbegin(), tour.rend());
    for (size_t i = 0; i < reversed.size(); ++i) {
      // The way to the next is the one that came from there.
      reversed[i].go = i + 1 < reversed.size() ? reversed[i + 1].go : 0.0;
      // How a view is reached and left are lists of their own.
      reversed[i].arrival.clear();
      reversed[i].departure.clear();
    }
    tour = reversed;
  });
}

Document WithMove(const Document& document, PixelSize photo, const std::string& move) {
  const host::PhotoViews views(PlanOf(document), photo);
  const std::vector<PhotoRect> parts = host::MoveViews(views, move, host::Fit::kFill);
  return WithEnds(document, parts.front(), parts.back());
}

Document WithEnds(const Document& document, const PhotoRect& from, const PhotoRect& to) {
  const double seconds = SecondsOfFilm(PlanOf(document));
  TourView first{Rounded(from)}, last{Rounded(to)};
  first.go = seconds;
  if (from == to) return WithTour(document, {{Rounded(from), seconds}}, true);
  return WithTour(document, {first, last}, true);
}

Document WithViewsOf(const Document& document, const Tour& views) {
  RenderPlan plan = PlanOf(document);
  plan.SetTour(views);
  return WithTour(document, TimedTour(plan), true);
}

Document WithEasing(const Document& document, size_t index, const std::string& out,
                    const std::string& in) {
  const auto entry = [](const char* parameter, const std::string& word) {
    return word.empty() ? "" : host::EntryOf(host::ListOf(parameter), word);
  };
  return WithChangedTour(document, false, [&](Tour& tour) {
    tour.at(index).departure = entry(key::kOutVelocity, out);
    if (index + 1 < tour.size()) tour[index + 1].arrival = entry(key::kInVelocity, in);
  });
}

Document WithKeysAsViews(const Document& document, PixelSize photo) {
  const RenderPlan plan = PlanOf(document);
  const double seconds = SecondsOfFilm(plan), shape = host::RoomOf(plan, photo).shape;
  const host::PhotoViews views(plan, photo);
  Tour tour;
  double reached = 0.0;
  for (const motion::Stop& stop : host::StopsOf(plan, shape)) {
    const double before = (stop.time - reached) * seconds;
    reached = stop.time;
    TourView one{Rounded(views.PartOf(host::ViewOf(stop.window, shape)))};
    one.arrival = catalogue::kInVelocity[static_cast<size_t>(stop.arrival)].text;
    one.departure = catalogue::kOutVelocity[static_cast<size_t>(stop.departure)].text;
    if (tour.empty()) {
      one.hold = std::max(0.0, before);
    } else if (tour.back().view == one.view) {  // a pause
      tour.back().hold += before;
      tour.back().departure = one.departure;
      continue;
    } else {
      tour.back().go = before;
    }
    tour.push_back(one);
  }
  tour.back().hold += std::max(0.0, 1.0 - reached) * seconds;
  const Document cleared = Changed(document, [&](ordered_json& json) {
    for (const char* key : {key::kSize, key::kPosition, key::kInVelocity, key::kOutVelocity}) {
      if (json.contains("parameters")) json["parameters"].erase(key);
    }
    json["motion"] = host::WordOf(plan.motion);
    json["views"] = host::JsonOf({{tour.front().view}});
  });
  Document made = WithTour(cleared, tour, true);
  PartsOf(PlanOf(made), photo);  // keys may look where no view can
  return made;
}

}  // namespace kelto::editor
