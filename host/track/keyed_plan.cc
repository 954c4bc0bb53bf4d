#include "host/track/keyed_plan.h"

#include <variant>
#include <vector>

#include "catalogue/parameters.h"
#include "host/options/choices.h"
#include "host/track/photo_views.h"

namespace kelto::host {
namespace {

/// Whether views that lie on the way are passed without a stop.
bool PassesViews(const RenderPlan& plan) {
  if (plan.motion == MotionLaw::kLinear) return false;
  const SettingValue* path = HeldValue(plan.FindSetting(key::kPath));
  return path != nullptr && *path == SettingValue(EntryOf(ListOf(key::kPath), "spline"));
}

}  // namespace

RenderPlan KeyedPlan(const RenderPlan& plan, PixelSize photo) {
  if (plan.views.empty()) return plan;
  const std::vector<View> views = PhotoViews(plan, photo).ViewsOf(plan.views);
  const std::vector<TourTime> times = TimesOf(plan.views);
  const auto viewAt = [&](size_t i) { return views[times[i].view]; };
  const bool passes = PassesViews(plan);
  std::vector<ViewKey> keys;
  keys.reserve(times.size());
  for (size_t i = 0; i < times.size(); ++i) {
    const bool inner = i > 0 && i + 1 < times.size();
    const bool pauses = inner && (viewAt(i - 1) == viewAt(i) || viewAt(i) == viewAt(i + 1));
    const bool passed = passes && inner && !pauses;
    const auto word = [&](const std::string& said, const char* parameter) {
      const ChoiceList& list = ListOf(parameter);
      return !said.empty() ? said : EntryOf(list, passed ? "linear" : list.preset);
    };
    const TourView& view = plan.views[times[i].view];
    keys.push_back({times[i].time, viewAt(i), word(view.arrival, key::kInVelocity),
                    word(view.departure, key::kOutVelocity)});
  }
  RenderPlan keyed = plan;
  keyed.SetViews(keys);
  return keyed;
}

}  // namespace kelto::host
