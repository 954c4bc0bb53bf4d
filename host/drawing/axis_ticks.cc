#include "host/drawing/axis_ticks.h"

#include <algorithm>
#include <cmath>

namespace kelto::host {
namespace {

/// The step of 1, 2 or 5 times a power of ten that cuts `range` into about `count` parts.
double RoundStep(double range, int count) {
  const double rough = range / count;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  const double factor = rough / power;
  return power * (factor < 1.5 ? 1.0 : factor < 3.5 ? 2.0 : factor < 7.5 ? 5.0 : 10.0);
}

}  // namespace

Ticks TicksWithin(double least, double most, int count) {
  Ticks ticks{least, most, {}, 0};
  const double step = RoundStep(most - least, count);
  ticks.decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, 9);
  constexpr double kRounding = 1e-9;
  const auto first = static_cast<int64_t>(std::ceil(least / step - kRounding));
  const auto last = static_cast<int64_t>(std::floor(most / step + kRounding));
  for (int64_t i = first; i <= last; ++i) ticks.at.push_back(static_cast<double>(i) * step);
  return ticks;
}

Ticks TicksFor(double least, double most, int count, double span) {
  constexpr double kRoom = 0.06;
  const double missing = std::max(0.0, span - (most - least)) / 2;
  const double room = missing + kRoom * std::max(most - least, span);
  return TicksWithin(least - room, most + room, count);
}

}  // namespace kelto::host
