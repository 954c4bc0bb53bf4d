#include "host/plan/tour.h"

#include <algorithm>
#include <utility>

namespace kelto::host {
namespace {

constexpr double kUsualGo = 2.0;

double WayOf(const TourView& view) { return view.go > 0.0 ? view.go : kUsualGo; }

}  // namespace

void CloseTour(std::vector<TourView>& tour) {
  if (tour.size() < 2 || tour.front().view == tour.back().view) return;
  TourView again = tour.front();
  // Where it begins is looked at there.
  again.hold = again.go = 0.0;
  tour.push_back(std::move(again));
}

bool HasTimes(const std::vector<TourView>& tour) {
  return std::any_of(tour.begin(), tour.end(),
                     [](const TourView& view) { return view.hold > 0.0 || view.go > 0.0; });
}

double SecondsOf(const std::vector<TourView>& tour) {
  double seconds = 0.0;
  for (size_t i = 0; i < tour.size(); ++i) {
    seconds += tour[i].hold + (i + 1 < tour.size() ? WayOf(tour[i]) : 0.0);
  }
  return seconds;
}

std::vector<TourTime> TimesOf(const std::vector<TourView>& tour) {
  if (tour.size() == 1) return {{0, 0.0}, {0, 1.0}};
  const double whole = SecondsOf(tour);
  std::vector<TourTime> times;
  double seconds = 0.0;
  const auto add = [&](size_t view) {
    const double time = std::min(seconds / whole, 1.0);
    // A hold may be too short to be seen beside all the others.
    if (times.empty() || time > times.back().time) times.push_back({view, time});
  };
  for (size_t i = 0; i < tour.size(); ++i) {
    add(i);
    seconds += tour[i].hold;
    if (tour[i].hold > 0.0) add(i);
    seconds += WayOf(tour[i]);
  }
  times.back().time = 1.0;
  return times;
}

}  // namespace kelto::host
