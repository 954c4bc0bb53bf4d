#include "editor/window/scenes.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "catalogue/parameters.h"
#include "editor/document/tour_changes.h"
#include "editor/messages/answers.h"
#include "host/options/choices.h"
#include "host/track/planned_stops.h"
#include "motion/easing.h"

namespace kelto::editor {
namespace {

QString Text(const char* text) { return QCoreApplication::translate("Scenes", text); }

std::string WordFor(const char* parameter, const std::string& entry) {
  for (const catalogue::Entry& choice : host::ListOf(parameter).choices) {
    if (entry == choice.text) return choice.word;
  }
  return "";
}

QString ValueText(const host::SettingValue& value) {
  const QLocale locale;
  if (const auto* number = std::get_if<double>(&value)) return locale.toString(*number, 'g', 4);
  if (const auto* point = std::get_if<std::array<double, 2>>(&value)) {
    return locale.toString((*point)[0], 'g', 3) + "; " + locale.toString((*point)[1], 'g', 3);
  }
  if (const auto* entry = std::get_if<std::string>(&value)) return QString::fromStdString(*entry);
  return "";
}

/// The share of the way covered at even times.
std::vector<double> CurveOf(const std::string& out, const std::string& in) {
  const auto entryOf = [](const char* list, const std::string& word) {
    return host::EntryOf(host::ListOf(list), word);
  };
  const motion::Departure departure = host::DepartureOf(entryOf(key::kOutVelocity, out));
  const motion::Arrival arrival = host::ArrivalOf(entryOf(key::kInVelocity, in));
  constexpr int kSteps = 24;
  std::vector<double> curve;
  for (int i = 0; i <= kSteps; ++i) {
    curve.push_back(motion::Eased(departure, arrival, static_cast<double>(i) / kSteps));
  }
  return curve;
}

}  // namespace

QString LaneName(const std::string& parameter) {
  if (parameter == key::kSize) return Text(QT_TRANSLATE_NOOP("Scenes", "Zoom"));
  if (parameter == key::kPosition) return Text(QT_TRANSLATE_NOOP("Scenes", "Position"));
  if (parameter == key::kInVelocity) return Text(QT_TRANSLATE_NOOP("Scenes", "Arrival"));
  return Text(QT_TRANSLATE_NOOP("Scenes", "Departure"));
}

const host::Setting* SettingOfLane(const host::RenderPlan& plan, size_t lane) {
  if (!plan.views.empty()) return nullptr;
  // Lanes are shown for the parameters that have keys.
  for (const char* parameter : {key::kSize, key::kPosition, key::kInVelocity, key::kOutVelocity}) {
    const host::Setting* setting = plan.FindSetting(parameter);
    if (setting != nullptr && !setting->keys.empty() && lane-- == 0) return setting;
  }
  return nullptr;
}

CanvasScene CanvasSceneOf(const host::RenderPlan& plan, PixelSize photo, int selected,
                          bool beyondEdges, const FilmWay& way) {
  CanvasScene scene;
  scene.views = PartsOf(plan, photo);
  scene.selected = selected < static_cast<int>(scene.views.size()) ? selected : -1;
  scene.way = way;
  scene.limits = LimitsOf(plan, photo, beyondEdges);
  return scene;
}

std::vector<float> SoundDuring(const std::vector<float>& peaks, double begin, double seconds) {
  if (peaks.empty()) return {};
  const auto first = static_cast<size_t>(std::max(0.0, begin * kPeaksPerSecond));
  std::vector<float> heard(std::max<size_t>(1, static_cast<size_t>(seconds * kPeaksPerSecond)));
  for (size_t i = 0; i < heard.size() && first + i < peaks.size(); ++i) {
    heard[i] = peaks[first + i];
  }
  return heard;
}

StopTimes StopTimesOf(const host::RenderPlan& plan) {
  StopTimes times;
  for (const host::TourView& one : TimedTour(plan)) times.push_back({one.hold, one.go});
  return times;
}

EasingWords EasingBehind(const host::RenderPlan& plan, size_t stop) {
  EasingWords words;
  if (stop + 1 >= plan.views.size()) return words;
  words.out = WordFor(key::kOutVelocity, plan.views[stop].departure);
  words.in = WordFor(key::kInVelocity, plan.views[stop + 1].arrival);
  return words;
}

TimelineScene TimelineSceneOf(const host::RenderPlan& plan, int selected, const FilmWay& way) {
  TimelineScene scene;
  const double rate = plan.format.rate.PerSecond();
  scene.stops = StopTimesOf(plan);
  scene.selected = selected;
  scene.length = plan.frames / rate;
  scene.frameSeconds = 1.0 / rate;
  scene.way = way;
  // A film of many stops has few ways of easing.
  std::map<std::pair<std::string, std::string>, WayEasing> easings;
  for (size_t i = 0; i + 1 < plan.views.size(); ++i) {
    const EasingWords words = EasingBehind(plan, i);
    const auto usual = [](const std::string& word, const char* list) {
      return word.empty() ? std::string(host::ListOf(list).preset) : word;
    };
    const std::string out = usual(words.out, key::kOutVelocity);
    const std::string in = usual(words.in, key::kInVelocity);
    WayEasing& easing = easings[{out, in}];
    if (easing.curve.empty()) {
      easing = {QString::fromStdString(out == in ? out : out + " – " + in), CurveOf(out, in)};
    }
    scene.easing.push_back(easing);
  }
  while (const host::Setting* setting = SettingOfLane(plan, scene.lanes.size())) {
    KeyLane lane{LaneName(setting->parameter), {}, {}};
    for (const host::SettingKey& key : setting->keys) {
      lane.times.push_back(key.time);
      lane.values.push_back(ValueText(key.value));
    }
    scene.lanes.push_back(lane);
  }
  return scene;
}

}  // namespace kelto::editor
