// A film's views as one list, each with the times that it takes.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/options/given_view.h"

namespace kelto::host {

/// Shortest and longest way between two views, and longest look at one, in seconds.
constexpr double kShortestGo = 0.001, kLongestTime = 86400.0;

struct TourView {
  GivenView view;
  double hold = 0.0;  ///< seconds for which it is looked at, 0..kLongestTime
  /// Seconds of the way to the next view, kShortestGo..kLongestTime; 0 where nothing is said. The
  /// last view has none.
  double go = 0.0;
  /// How it is reached and left, entries of the lists "invelocity" and "outvelocity"; empty where
  /// nothing is said.
  std::string arrival{}, departure{};
  bool operator==(const TourView&) const = default;
};

/// Makes a tour come back to its first view, where it does not yet: the way back is as long as
/// others are. A single view stays alone.
void CloseTour(std::vector<TourView>& tour);

/// Whether any of them says how long it takes.
bool HasTimes(const std::vector<TourView>& tour);

/// The seconds of all holds and ways; a way of which nothing is said takes two.
double SecondsOf(const std::vector<TourView>& tour);

/// When a view is reached, or left after a hold: its place in the list, and the time as a share of
/// SecondsOf.
struct TourTime {
  size_t view = 0;
  double time = 0.0;
  bool operator==(const TourTime&) const = default;
};

/// The times of a tour of at least one view, rising from 0 to 1. A single view stands still from 0
/// to 1.
std::vector<TourTime> TimesOf(const std::vector<TourView>& tour);

}  // namespace kelto::host
