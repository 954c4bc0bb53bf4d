// How time is spent between two views: the effect's own words.
#pragma once

namespace kelto::motion {

/// How a view is reached. The values are those of the effect's list.
enum class Arrival { kLinear, kEase, kConstant };
/// How a view is left; `kHold` stays there until the next one's time.
enum class Departure { kLinear, kEase, kConstant, kHold };

/// The share of a way that is covered at `u`, 0..1, of its time: the curve through (0, 0) and
/// (1, 1) that the effect eases by. Throws std::bad_alloc.
double Eased(Departure departure, Arrival arrival, double u);

}  // namespace kelto::motion
