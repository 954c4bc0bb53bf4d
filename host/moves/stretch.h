// Stretches of a side of a photo.
#pragma once

#include <algorithm>

namespace kelto::host {

/// Moves a stretch of `length` that begins at `begin` so that it has all of [from, to); about the
/// middle of that where it is too short.
inline double BeginHaving(double begin, double length, double from, double to) {
  if (to - from >= length) return (from + to - length) / 2;
  return std::clamp(begin, to - length, from);
}

}  // namespace kelto::host
