#include "editor/rules/timecode.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace kelto::editor {

std::string Timecode(int32_t frame, host::FrameRate rate) {
  const auto base = std::max<int64_t>(1, std::llround(std::ceil(rate.PerSecond() - 1e-9)));
  const int64_t seconds = frame / base;
  char text[64];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                static_cast<int>(frame % base));
  return text;
}

std::string SecondsText(double seconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", seconds);
  std::string cut = text;
  while (cut.ends_with('0')) cut.pop_back();
  if (cut.ends_with('.')) cut.pop_back();
  return cut + " s";
}

}  // namespace kelto::editor
