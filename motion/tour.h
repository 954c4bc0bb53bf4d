// A film's way through its views.
#pragma once

#include <cstddef>
#include <vector>

#include "motion/easing.h"
#include "motion/leg.h"
#include "motion/pace.h"
#include "motion/room.h"
#include "motion/window.h"

namespace kelto::motion {

/// How a view becomes the next one.
enum class Law { kSteady, kFly };
/// Each way by itself, or one smooth way through all.
enum class Path { kLinear, kSpline };

/// A view of a tour: when it is met, and how time goes before and after.
struct Stop {
  double time = 0.0;
  Window window;
  Arrival arrival = Arrival::kLinear;
  Departure departure = Departure::kLinear;
};

/// Windows over time. Made once for a film, of any length; a window costs the same whatever that
/// length is.
///
/// A view that is reached and left by kConstant is passed: the stretch from the stop before to the
/// stop after is gone at one perceived speed, whatever the time of the view. On a smooth path a
/// view that is reached and left by kLinear is passed, too, at its time. All other views are stops:
/// time is eased from stop to stop. Two equal views in a row are a pause and stops both.
class Tour {
 public:
  /// `stops` in order of time, at least one. `seconds` is how long a unit of their times lasts: on
  /// a smooth path the speed changes by 9/10 of its mean a second at most, which is 1.8 % a frame
  /// at 50 fps, unless the stops' times or easing ask for more. Throws std::bad_alloc.
  Tour(std::vector<Stop> stops, Law law, Path path, const Room& room, double seconds = 10.0);
  /// The window at a time; the first or last view outside the tour. Throws std::bad_alloc.
  Window At(double time) const;
  /// The perceived length of the way up to a time, which never falls: what it gains from one moment
  /// to another is the way gone in between, also where that turns back.
  double LengthAt(double time) const;

 private:
  /// Views `first` .. `last` between two stops.
  struct Run {
    size_t first = 0, last = 0;
    size_t pace = 0;  ///< of paces_, where the path is smooth
  };
  void MakeLegs(Law law, const Room& room);
  void MakeSmoothLegs(const Room& room);
  void AddSmoothPiece(size_t first, size_t last, const Room& room);
  void MakeRuns(Path path);
  void MakePaces(double seconds);
  bool IsPause(size_t leg) const { return stops_[leg].window == stops_[leg + 1].window; }
  bool Jumps(size_t leg) const { return stops_[leg].departure == Departure::kHold; }
  bool PiecesMeet(size_t stop) const;
  bool IsPassed(size_t stop, Path path) const;
  /// The run that a time within the tour is of.
  const Run& RunAt(double time) const;
  double EasedTime(const Run& run, double time) const;
  /// The share of a run's legs that is gone at a time, where the path is not smooth.
  double ShareAt(const Run& run, double time) const;
  Window AtLength(double length, size_t first, size_t last) const;

  std::vector<Stop> stops_;
  std::vector<Leg> legs_;             ///< from each stop to the next
  std::vector<double> lengths_;       ///< perceived, up to each stop
  std::vector<double> straightness_;  ///< of a smooth path at each stop
  std::vector<Run> runs_;
  std::vector<Pace> paces_;  ///< length over eased time, of each smooth piece
};

}  // namespace kelto::motion
