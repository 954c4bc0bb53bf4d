#include "editor/rules/key_drag.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelto::editor {

std::vector<double> KeysMoved(std::span<const double> times, std::span<const size_t> selected,
                              double by, double gap) {
  std::vector<double> moved(times.begin(), times.end());
  if (selected.empty()) return moved;
  const auto isSelected = [&](size_t key) {
    return std::binary_search(selected.begin(), selected.end(), key);
  };
  double back = -1.0, on = 1.0;  // how far all of them can go
  for (const size_t key : selected) {
    const bool held = key > 0 && !isSelected(key - 1);
    if (key == 0) back = std::max(back, -times[key]);
    if (held) back = std::max(back, std::min(0.0, times[key - 1] + gap - times[key]));
    if (key + 1 == times.size()) on = std::min(on, 1.0 - times[key]);
    if (key + 1 < times.size() && !isSelected(key + 1)) {
      on = std::min(on, std::max(0.0, times[key + 1] - gap - times[key]));
    }
  }
  // Keys of a trimmed film may lie outside it, where they stay.
  by = std::clamp(by, std::min(back, 0.0), std::max(on, 0.0));
  for (const size_t key : selected) moved[key] += by;
  return moved;
}

size_t AddKey(std::vector<host::SettingKey>& keys, double time) {
  const auto after =
      std::find_if(keys.begin(), keys.end(), [&](const auto& key) { return key.time > time; });
  const bool between = after != keys.begin() && after != keys.end();
  const host::SettingKey& from = after == keys.begin() ? *after : *(after - 1);
  host::SettingKey key{time, from.value};
  if (between) {
    const double part = (time - from.time) / (after->time - from.time);
    if (auto* number = std::get_if<double>(&key.value)) {
      *number = std::lerp(*number, std::get<double>(after->value), part);
    } else if (auto* point = std::get_if<std::array<double, 2>>(&key.value)) {
      const auto& to = std::get<std::array<double, 2>>(after->value);
      for (size_t i = 0; i < 2; ++i) (*point)[i] = std::lerp((*point)[i], to[i], part);
    }
  }
  const auto place = static_cast<size_t>(after - keys.begin());
  keys.insert(after, key);
  return place;
}

}  // namespace kelto::editor
