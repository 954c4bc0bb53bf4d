#include "host/plan/default_plan.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/options/choices.h"
#include "host/options/rate.h"

namespace kelto::host {
namespace {

constexpr double kDefaultSeconds = 5.0;
constexpr const char* kArrival = "invelocity";
constexpr const char* kDeparture = "outvelocity";

std::string Preset(const char* parameter) {
  const ChoiceList& list = ListOf(parameter);
  return EntryOf(list, list.preset);
}

}  // namespace

RenderPlan DefaultPlan(const std::string& photo) {
  RenderPlan plan;
  plan.photo = photo;
  plan.frames = FramesOf(kDefaultSeconds, plan.format.rate);
  for (const ChoiceList& list : ChoiceLists()) {
    const std::string parameter = list.parameter;
    if (parameter == kArrival || parameter == kDeparture) continue;
    plan.Set(parameter, EntryOf(list, list.preset));
  }
  plan.Set("bgcolor", BackgroundFor({}));
  SetMove(plan, View{}, View{});
  return plan;
}

void SetMove(RenderPlan& plan, std::span<const View> views) {
  // A view that stands still takes two keys.
  const size_t last = std::max<size_t>(views.size(), 2) - 1;
  std::vector<ViewKey> keys;
  keys.reserve(last + 1);
  for (size_t i = 0; i <= last; ++i) {
    const double time = static_cast<double>(i) / static_cast<double>(last);
    keys.push_back({time, views[std::min(i, views.size() - 1)], "", ""});
  }
  SetMove(plan, std::move(keys));
}

void SetMove(RenderPlan& plan, std::vector<ViewKey> keys) {
  for (ViewKey& key : keys) {
    key.arrival = Preset(kArrival);
    key.departure = Preset(kDeparture);
  }
  plan.SetViews(keys);
}

void SetMove(RenderPlan& plan, const View& from, const View& to) {
  SetMove(plan, std::array{from, to});
}

}  // namespace kelto::host
