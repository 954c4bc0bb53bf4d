#include "host/plan/default_plan.h"

#include <array>
#include <utility>

#include "catalogue/parameters.h"
#include "host/options/choices.h"
#include "host/options/rate.h"

namespace kelto::host {
namespace {

std::string Preset(const char* parameter) {
  const ChoiceList& list = ListOf(parameter);
  return EntryOf(list, list.preset);
}

}  // namespace

RenderPlan DefaultPlan(const std::string& photo) {
  RenderPlan plan;
  plan.photo = photo;
  plan.frames = FramesOf(kUsualSeconds, plan.format.rate);
  for (const ChoiceList& list : ChoiceLists()) {
    const std::string parameter = list.parameter;
    if (parameter == key::kInVelocity || parameter == key::kOutVelocity) continue;
    plan.Set(parameter, EntryOf(list, list.preset));
  }
  plan.Set(key::kBackgroundColor, BackgroundFor({}));
  // Keys, so that a project may set single parameters of them.
  const std::string arrival = Preset(key::kInVelocity), departure = Preset(key::kOutVelocity);
  plan.SetViews(
      std::array{ViewKey{0.0, {}, arrival, departure}, ViewKey{1.0, {}, arrival, departure}});
  return plan;
}

void SetMove(RenderPlan& plan, std::span<const View> views) {
  std::vector<TourView> tour;
  tour.reserve(views.size());
  for (const View& view : views) tour.push_back({view});
  plan.SetTour(std::move(tour));
}

void SetMove(RenderPlan& plan, const View& from, const View& to) {
  SetMove(plan, std::array{from, to});
}

}  // namespace kelto::host
