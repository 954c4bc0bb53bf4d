// How fast a smooth way is gone.
#pragma once

#include <vector>

namespace kelto::motion {

/// A moment at which a way has been gone up to a length, and how straight it goes on there: 1 for
/// straight on, 0 where it turns back.
struct Milestone {
  double time = 0.0, length = 0.0;
  double straightness = 1.0;
};

/// The length gone over time through milestones of rising time: never backwards, and with a speed
/// that changes as gradually as the milestones allow. Between two of them it changes evenly, at one
/// rate in the first half of the time and at another in the second, or rests in the middle; of all
/// such paces this is the one whose largest rate is the least, and within a quarter of the least of
/// any pace.
///
/// Where the way turns the speed falls, to nothing where it turns back, as far as that takes no
/// larger rate than `calm`, a part of the mean speed that may be won or lost per unit of time, or
/// than the milestones ask for by themselves.
class Pace {
 public:
  Pace(const std::vector<Milestone>& milestones, double calm);
  /// Held at the first and last milestone's outside.
  double At(double time) const;

 private:
  struct Knot {
    double time, length, speed;
  };
  void AddBetween(const Milestone& from, const Milestone& to, double leaving, double arriving);

  std::vector<Knot> knots_;  ///< between two of them the speed changes at one rate
};

}  // namespace kelto::motion
