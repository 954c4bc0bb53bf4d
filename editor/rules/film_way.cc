#include "editor/rules/film_way.h"

#include <algorithm>
#include <cmath>

namespace kelto::editor {

host::PhotoRect ViewAt(std::span<const WaySample> way, double seconds) {
  const auto after = std::partition_point(
      way.begin(), way.end(), [&](const WaySample& sample) { return sample.seconds < seconds; });
  if (after == way.begin()) return way.front().part;
  if (after == way.end()) return way.back().part;
  const WaySample& before = *(after - 1);
  const double share = (seconds - before.seconds) / (after->seconds - before.seconds);
  const auto between = [&](double from, double to) { return from + (to - from) * share; };
  return {between(before.part.x, after->part.x), between(before.part.y, after->part.y),
          between(before.part.width, after->part.width),
          between(before.part.height, after->part.height)};
}

double TickStep(double length, size_t most) {
  double step = 0.1;
  for (int place = 0; length / step > static_cast<double>(most); ++place) {
    step *= place % 3 == 1 ? 2.5 : 2.0;
  }
  return step;
}

std::vector<WayTick> TicksOn(std::span<const WaySample> way, size_t most) {
  if (way.size() < 2 || most == 0) return {};
  const double step = TickStep(way.back().seconds, most);
  std::vector<WayTick> ticks;
  const auto count = static_cast<size_t>(std::floor(way.back().seconds / step + 1e-9));
  for (size_t tick = 0; tick <= count; ++tick) {
    const double seconds = static_cast<double>(tick) * step;
    const host::PhotoRect view = ViewAt(way, seconds);
    const PhotoPoint middle{view.CentreX(), view.CentreY()};
    if (!ticks.empty() && ticks.back().middle == middle) continue;
    ticks.push_back({seconds, middle});
  }
  return ticks.size() < 2 ? std::vector<WayTick>{} : ticks;
}

}  // namespace kelto::editor
