// Views with times: --view, --hold and --go, in the order in which they are typed.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/plan/render_plan.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// An option of a tour, without its dashes, and its text.
using TourWord = std::pair<std::string, std::string>;

/// The --view, --hold and --go of a command line, in their order.
std::vector<TourWord> TourWordsOf(const CLI::App& command);

/// A view, for how many seconds it is looked at, and how many the way to the next one takes; 0
/// where nothing is said.
struct TourView {
  std::string view;
  double hold = 0.0, go = 0.0;
};

/// Joins views and their times. Throws UsageError for a time that belongs to no view.
std::vector<TourView> TourOf(const std::vector<TourWord>& words);

/// Whether any of them has a time.
bool HasTimes(const std::vector<TourView>& tour);

/// The seconds of all holds and ways; a way of which nothing is said takes two.
double SecondsOf(const std::vector<TourView>& tour);

/// A key for each view of `tour`, the same as `views`, and one more for the end of each hold: times
/// as shares of SecondsOf. Velocities are left empty.
std::vector<ViewKey> KeysOf(const std::vector<TourView>& tour, const std::vector<View>& views);

}  // namespace kelto::host
