#include "editor/widgets/timeline_layout.h"

#include <algorithm>
#include <cmath>

namespace kelto::editor {
namespace {

struct RowHeights {
  double ruler, stops, sound, lane, speed;
};
constexpr RowHeights kUsual{22.0, 40.0, 32.0, 22.0, 52.0}, kLow{18.0, 24.0, 16.0, 18.0, 26.0};
constexpr double kGap = 3.0, kMargin = 10.0, kNames = 110.0;
constexpr double kKeyReach = 6.0;

}  // namespace

double HeightOf(const TimelineScene& scene, bool low) {
  const RowHeights& of = low ? kLow : kUsual;
  double height = of.ruler + of.speed + kGap;
  if (!scene.stops.empty()) height += of.stops + kGap;
  if (!scene.sound.empty()) height += of.sound + kGap;
  return height + static_cast<double>(scene.lanes.size()) * (of.lane + kGap);
}

TimelineRows RowsOf(const TimelineScene& scene, QSizeF size, bool low) {
  const RowHeights& of = low ? kLow : kUsual;
  TimelineRows rows;
  rows.left = scene.lanes.empty() ? kMargin : kNames;
  rows.width = std::max(1.0, size.width() - rows.left - kMargin);
  double y = 0.0;
  const auto next = [&](double height) {
    const QRectF row(0.0, y, size.width(), height);
    y += height + kGap;
    return row;
  };
  rows.ruler = next(of.ruler);
  if (!scene.stops.empty()) rows.stops = next(of.stops);
  if (!scene.sound.empty()) rows.sound = next(of.sound);
  for (size_t lane = 0; lane < scene.lanes.size(); ++lane) rows.lanes.push_back(next(of.lane));
  rows.speed = next(std::max(of.speed, size.height() - y));
  return rows;
}

std::optional<KeyPlace> KeyAt(const TimelineScene& scene, const TimelineRows& rows,
                              const TimeAxis& axis, QPointF at) {
  std::optional<KeyPlace> nearest;
  double distance = kKeyReach;
  for (size_t lane = 0; lane < rows.lanes.size(); ++lane) {
    if (!rows.lanes[lane].contains(at)) continue;
    const std::vector<double>& times = scene.lanes[lane].times;
    for (size_t key = 0; key < times.size(); ++key) {
      const double away = std::abs(axis.ToX(times[key] * scene.length) - at.x());
      if (away > distance) continue;
      nearest = {lane, key};
      distance = away;
    }
  }
  return nearest;
}

std::vector<KeyPlace> KeysIn(const TimelineScene& scene, const TimelineRows& rows,
                             const TimeAxis& axis, const QRectF& area) {
  std::vector<KeyPlace> keys;
  for (size_t lane = 0; lane < rows.lanes.size(); ++lane) {
    const double y = rows.lanes[lane].center().y();
    if (y < area.top() || y > area.bottom()) continue;
    const std::vector<double>& times = scene.lanes[lane].times;
    for (size_t key = 0; key < times.size(); ++key) {
      const double x = axis.ToX(times[key] * scene.length);
      if (x >= area.left() && x <= area.right()) keys.push_back({lane, key});
    }
  }
  return keys;
}

int StopAt(const TimelineScene& scene, const TimelineRows& rows, const TimeAxis& axis, double x) {
  int found = -1;
  double arrival = 0.0;
  for (size_t stop = 0; stop < scene.stops.size(); ++stop) {
    const double begin = axis.ToX(arrival), width = scene.stops[stop].hold * axis.pixelsPerSecond;
    const double more = std::max(0.0, kNarrowestStop - width) / 2;
    if (x >= begin - more && x <= begin + width + more) found = static_cast<int>(stop);
    arrival += scene.stops[stop].hold + scene.stops[stop].go;
  }
  return rows.stops.isEmpty() ? -1 : found;
}

int WayAt(const TimelineScene& scene, const TimeAxis& axis, double x) {
  const double seconds = axis.ToSeconds(x);
  double arrival = 0.0;
  for (size_t stop = 0; stop + 1 < scene.stops.size(); ++stop) {
    const double leaves = arrival + scene.stops[stop].hold;
    arrival = leaves + scene.stops[stop].go;
    if (seconds > leaves && seconds < arrival) return static_cast<int>(stop);
  }
  return -1;
}

}  // namespace kelto::editor
