#include "host/track/planned_stops.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <variant>

#include "catalogue/parameters.h"

namespace kelto::host {
namespace {

using Keys = std::vector<SettingKey>;

// The lists' indexes are values of motion::Arrival and motion::Departure.
static_assert(std::size(catalogue::kInVelocity) == 3 && std::size(catalogue::kOutVelocity) == 4);

const Keys& KeysOf(const RenderPlan& plan, const char* parameter) {
  static const Keys none;
  const Setting* setting = plan.FindSetting(parameter);
  return setting == nullptr ? none : setting->keys;
}

Keys::const_iterator KeyAfter(const Keys& keys, double time) {
  return std::partition_point(keys.begin(), keys.end(),
                              [&](const SettingKey& key) { return key.time < time; });
}

/// The number that `part` finds in the keys' values, at a time.
template <typename Part>
double NumberAt(const Keys& keys, double time, double usual, Part part) {
  if (keys.size() < 2) return usual;
  const auto after = KeyAfter(keys, time);
  if (after == keys.end()) return part(keys.back().value);
  const double value = part(after->value);
  if (after == keys.begin() || after->time == time) return value;
  const double before = part((after - 1)->value);
  const double share = (time - (after - 1)->time) / (after->time - (after - 1)->time);
  return before + (value - before) * share;
}

double NumberOf(const SettingValue& value) {
  const auto* number = std::get_if<double>(&value);
  return number == nullptr ? 1.0 : *number;
}

template <size_t axis>
double AxisOf(const SettingValue& value) {
  const auto* point = std::get_if<std::array<double, 2>>(&value);
  return point == nullptr ? 0.0 : (*point)[axis];
}

View ViewAt(const RenderPlan& plan, double time) {
  const Keys &zooms = KeysOf(plan, key::kSize), &centres = KeysOf(plan, key::kPosition);
  return {NumberAt(zooms, time, 1.0, NumberOf), NumberAt(centres, time, 0.0, AxisOf<0>),
          NumberAt(centres, time, 0.0, AxisOf<1>)};
}

/// The entry that a velocity has at a time; empty where it has none.
std::string EntryAt(const RenderPlan& plan, const char* parameter, double time) {
  const Keys& keys = KeysOf(plan, parameter);
  const auto key = KeyAfter(keys, time);
  if (key == keys.end() || key->time != time) return "";
  const auto* text = std::get_if<std::string>(&key->value);
  return text == nullptr ? "" : *text;
}

/// The index of an entry in its list, 0 for what is none.
size_t IndexOf(const char* parameter, const std::string& text) {
  const auto entries = catalogue::Find(parameter)->entries;
  const auto found =
      std::find_if(entries.begin(), entries.end(),
                   [&](const catalogue::Entry& entry) { return entry.text == text; });
  return found == entries.end() ? 0 : static_cast<size_t>(found - entries.begin());
}

}  // namespace

motion::Window WindowOf(const View& view, double shape) {
  // Below zoom 1 the effect measures centres in the view's own size.
  const double unit = view.zoom < 1.0 ? 1.0 / view.zoom : 1.0;
  return {view.centreX * unit, view.centreY * unit * shape, 1.0 / view.zoom};
}

View ViewOf(const motion::Window& window, double shape) {
  const double zoom = 1.0 / window.width;
  const double unit = zoom < 1.0 ? zoom : 1.0;
  return {zoom, window.x * unit, window.y * unit / shape};
}

motion::Arrival ArrivalOf(const std::string& entry) {
  return static_cast<motion::Arrival>(IndexOf(key::kInVelocity, entry));
}

motion::Departure DepartureOf(const std::string& entry) {
  return static_cast<motion::Departure>(IndexOf(key::kOutVelocity, entry));
}

std::vector<motion::Stop> StopsOf(const RenderPlan& plan, double shape) {
  std::vector<double> times;
  for (const char* parameter : {key::kSize, key::kPosition}) {
    const Keys& keys = KeysOf(plan, parameter);
    if (keys.size() < 2) continue;
    for (const SettingKey& key : keys) times.push_back(key.time);
  }
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  if (times.empty()) times.push_back(0.0);
  std::vector<motion::Stop> stops;
  stops.reserve(times.size());
  for (const double time : times) {
    stops.push_back({time, WindowOf(ViewAt(plan, time), shape),
                     ArrivalOf(EntryAt(plan, key::kInVelocity, time)),
                     DepartureOf(EntryAt(plan, key::kOutVelocity, time))});
  }
  return stops;
}

}  // namespace kelto::host
