#include "host/project/tour_json.h"

#include <nlohmann/json.hpp>
#include <string>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/options/choices.h"
#include "host/project/diagnostic.h"

namespace kelto::host {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// The entry that a word stands for; empty where there is none.
std::string EntryAt(const json& view, const char* field, const char* parameter) {
  return view.contains(field) ? EntryOf(ListOf(parameter), view[field].get<std::string>()) : "";
}

TourView ReadView(const json& view) {
  TourView one{ParseGivenView(view["view"].get<std::string>())};
  one.hold = view.value("hold", 0.0);
  one.go = view.value("go", 0.0);
  one.arrival = EntryAt(view, "in", key::kInVelocity);
  one.departure = EntryAt(view, "out", key::kOutVelocity);
  return one;
}

}  // namespace

std::vector<TourView> ReadTour(const json& views) {
  std::vector<TourView> tour;
  tour.reserve(views.size());
  for (size_t i = 0; i < views.size(); ++i) {
    try {
      tour.push_back(ReadView(views[i]));
    } catch (const Error& error) {
      throw Error(ToString({"views", IndexStep(i), "view"}) + ": " + Shown(views[i]["view"]) +
                  ": " + error.what());
    }
  }
  if (tour.back().go > 0.0) {
    throw Error(ToString({"views", IndexStep(tour.size() - 1), "go"}) +
                ": there is no view after this one; leave \"go\" out");
  }
  return tour;
}

ordered_json JsonOf(const std::vector<TourView>& tour) {
  ordered_json views = ordered_json::array();
  for (const TourView& one : tour) {
    ordered_json view;
    view["view"] = TextOf(one.view);
    if (one.hold > 0.0) view["hold"] = one.hold;
    if (one.go > 0.0) view["go"] = one.go;
    if (!one.arrival.empty()) view["in"] = WordFor(ListOf(key::kInVelocity), one.arrival);
    if (!one.departure.empty()) view["out"] = WordFor(ListOf(key::kOutVelocity), one.departure);
    views.push_back(std::move(view));
  }
  return views;
}

}  // namespace kelto::host
