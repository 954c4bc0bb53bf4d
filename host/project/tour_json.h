// A list of views as projects have it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "host/plan/tour.h"

namespace kelto::host {

/// Reads a list that keeps to the schema. Throws Error, "views[N].FIELD: what is wrong".
std::vector<TourView> ReadTour(const nlohmann::json& views);

/// A list from which ReadTour makes the same views.
nlohmann::ordered_json JsonOf(const std::vector<TourView>& tour);

}  // namespace kelto::host
