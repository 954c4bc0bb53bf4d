#include "host/jobs/fitted_times.h"

#include <algorithm>
#include <string>

#include "host/base/error.h"
#include "host/options/rate.h"

namespace kelto::host {
namespace {

std::vector<int32_t> TimesWith(int32_t each, const std::vector<std::optional<int32_t>>& given) {
  std::vector<int32_t> times;
  times.reserve(given.size());
  for (const auto& own : given) times.push_back(own.value_or(each));
  return times;
}

int64_t LengthOf(const std::vector<int32_t>& times, const std::vector<int32_t>& fades) {
  int64_t frames = 0;
  for (const int32_t time : times) frames += time;
  for (size_t i = 0; i + 1 < times.size(); ++i) {
    frames -= std::min(fades[i], std::min(times[i], times[i + 1]) / 2);
  }
  return frames;
}

}  // namespace

std::vector<int32_t> FittedTimes(int64_t total, const std::vector<std::optional<int32_t>>& given,
                                 const std::vector<int32_t>& fades) {
  const auto open = std::count(given.begin(), given.end(), std::nullopt);
  if (open == 0) {
    throw UsageError("all pictures have times of their own; leave --each out of a line");
  }
  // A frame more for each never makes the film shorter: the fades grow by half of it at the most.
  int32_t each = 0, tooLong = kMaxFrames;
  while (tooLong - each > 1) {
    const int32_t middle = each + (tooLong - each) / 2;
    (LengthOf(TimesWith(middle, given), fades) <= total ? each : tooLong) = middle;
  }
  if (each == 0) {
    throw UsageError(std::to_string(given.size()) + " pictures do not fit into the " +
                     std::to_string(total) + " frames of the sound");
  }
  std::vector<int32_t> times = TimesWith(each, given);
  // What is left is less than a frame for each.
  for (size_t i = 0; i < times.size(); ++i) {
    if (given[i]) continue;
    ++times[i];
    if (LengthOf(times, fades) > total) --times[i];
  }
  return times;
}

}  // namespace kelto::host
