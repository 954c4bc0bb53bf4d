// Views with times: --view, --hold and --go, in the order in which they are typed.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/plan/tour.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// An option of a tour, without its dashes, and its text.
using TourWord = std::pair<std::string, std::string>;

/// The --view, --hold and --go of a command line, in their order.
std::vector<TourWord> TourWordsOf(const CLI::App& command);

/// Joins views, read by `read`, and their times. Throws UsageError for a time that belongs to no
/// view.
std::vector<TourView> TourOf(const std::vector<TourWord>& words,
                             const std::function<GivenView(const std::string&)>& read);

}  // namespace kelto::host
