#include "host/facts/key_times.h"

#include <algorithm>
#include <cmath>

#include "catalogue/parameters.h"

namespace kelto::host {

std::vector<KeyTime> KeyTimesOf(const RenderPlan& plan) {
  std::vector<KeyTime> times;
  const auto add = [&](double time) {
    times.push_back({time, static_cast<int32_t>(std::lround(time * (plan.frames - 1)))});
  };
  if (!plan.views.empty()) {
    for (const TourTime& tourTime : TimesOf(plan.views)) add(tourTime.time);
  }
  for (const char* parameter : {key::kSize, key::kPosition}) {
    const Setting* setting = plan.FindSetting(parameter);
    if (setting == nullptr) continue;
    for (const SettingKey& key : setting->keys) {
      if (key.time >= 0.0 && key.time <= 1.0) add(key.time);
    }
  }
  std::sort(times.begin(), times.end(),
            [](const KeyTime& a, const KeyTime& b) { return a.time < b.time; });
  const auto same = [](const KeyTime& a, const KeyTime& b) { return a.time == b.time; };
  times.erase(std::unique(times.begin(), times.end(), same), times.end());
  return times;
}

}  // namespace kelto::host
