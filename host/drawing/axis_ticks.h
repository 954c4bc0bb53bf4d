// Where a diagram's axis has its numbers.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

struct Ticks {
  double least = 0.0, most = 1.0;  ///< ends of the axis
  std::vector<double> at;          ///< round numbers within them
  int decimals = 0;                ///< with which no two numbers look the same
};

/// An axis of about `count` numbers for values from `least` to `most`, a little longer than they
/// reach; values less than `span` apart, which is above 0, get an axis of that in their middle.
Ticks TicksFor(double least, double most, int count, double span);

/// The same, but ending where the values do.
Ticks TicksWithin(double least, double most, int count);

}  // namespace kelto::host
