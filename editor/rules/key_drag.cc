#include "editor/rules/key_drag.h"

#include <algorithm>

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

}  // namespace kelto::editor
