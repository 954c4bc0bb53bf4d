#include "host/plan/render_plan.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "catalogue/parameters.h"

namespace kelto::host {

bool MovesTheView(const std::string& parameter) {
  return parameter == key::kSize || parameter == key::kPosition || parameter == key::kInVelocity ||
         parameter == key::kOutVelocity;
}

Setting& RenderPlan::SettingOf(const std::string& parameter) {
  const auto found = std::find_if(settings.begin(), settings.end(), [&](const Setting& setting) {
    return setting.parameter == parameter;
  });
  if (found != settings.end()) return *found;
  settings.push_back({parameter, std::nullopt, {}, -1});
  return settings.back();
}

const Setting* RenderPlan::FindSetting(const std::string& parameter) const {
  const auto found = std::find_if(settings.begin(), settings.end(), [&](const Setting& setting) {
    return setting.parameter == parameter;
  });
  return found == settings.end() ? nullptr : &*found;
}

void RenderPlan::Set(const std::string& parameter, const SettingValue& value) {
  // Without keys: the effect resets a list whose keys are all inactive to its first entry.
  SettingOf(parameter) = {parameter, value, {}, -1};
}

void RenderPlan::SetViews(std::span<const ViewKey> keys) {
  Setting zoom{key::kSize, std::nullopt, {}, -1}, position{key::kPosition, std::nullopt, {}, -1},
      arrival{key::kInVelocity, std::nullopt, {}, -1},
      departure{key::kOutVelocity, std::nullopt, {}, -1};
  for (const ViewKey& key : keys) {
    zoom.keys.push_back({key.time, key.view.zoom});
    position.keys.push_back({key.time, std::array{key.view.centreX, key.view.centreY}});
    arrival.keys.push_back({key.time, key.arrival});
    departure.keys.push_back({key.time, key.departure});
  }
  for (const Setting& setting : std::array{zoom, position, arrival, departure}) {
    SettingOf(setting.parameter) = setting;
  }
  views.clear();
}

void RenderPlan::SetTour(std::vector<TourView> tour) {
  views = std::move(tour);
  std::erase_if(settings, [](const Setting& setting) { return MovesTheView(setting.parameter); });
}

void RenderPlan::SetVelocity(const std::string& parameter, const std::string& entry) {
  const bool arrives = parameter == key::kInVelocity;
  for (TourView& view : views) (arrives ? view.arrival : view.departure) = entry;
  if (!views.empty()) return;
  Setting& velocity = SettingOf(parameter);
  const Setting* zoom = FindSetting(key::kSize);
  if (velocity.keys.empty() && zoom != nullptr) velocity.keys = zoom->keys;
  for (SettingKey& key : velocity.keys) key.value = entry;
}

std::array<double, 3> BackgroundFor(Colour colour) {
  // The effect works in studio range and takes the parameter's levels, 0..255, for studio levels:
  // where it minds at all, it cuts them to 16..235 without scaling. So they are scaled here.
  const auto studio = [](uint8_t level) { return static_cast<int>(level * 219 / 255.0 + 16.5); };
  return {studio(colour.red) / 255.0, studio(colour.green) / 255.0, studio(colour.blue) / 255.0};
}

Colour ColourOf(const std::array<double, 3>& background) {
  const auto full = [](double channel) {
    return static_cast<uint8_t>(
        std::lround(std::clamp((channel * 255.0 - 16.0) * 255.0 / 219.0, 0.0, 255.0)));
  };
  return {full(background[0]), full(background[1]), full(background[2])};
}

}  // namespace kelto::host
