#include "editor/window/scenes.h"

#include <QCoreApplication>
#include <QLocale>
#include <array>

#include "editor/document/tour_changes.h"
#include "host/options/choices.h"
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

QString LaneName(const std::string& parameter) {
  if (parameter == "size") return Text(QT_TRANSLATE_NOOP("Scenes", "Zoom"));
  if (parameter == "position") return Text(QT_TRANSLATE_NOOP("Scenes", "Position"));
  if (parameter == "invelocity") return Text(QT_TRANSLATE_NOOP("Scenes", "Arrival"));
  return Text(QT_TRANSLATE_NOOP("Scenes", "Departure"));
}

/// The share of the way covered at even times.
std::vector<double> CurveOf(const EasingWords& words) {
  const auto departure = words.out == "linear"     ? motion::Departure::kLinear
                         : words.out == "constant" ? motion::Departure::kConstant
                         : words.out == "hold"     ? motion::Departure::kHold
                                                   : motion::Departure::kEase;
  const auto arrival = words.in == "linear"     ? motion::Arrival::kLinear
                       : words.in == "constant" ? motion::Arrival::kConstant
                                                : motion::Arrival::kEase;
  constexpr int kSteps = 24;
  std::vector<double> curve;
  for (int i = 0; i <= kSteps; ++i) {
    curve.push_back(motion::Eased(departure, arrival, static_cast<double>(i) / kSteps));
  }
  return curve;
}

}  // namespace

const std::vector<std::string>& LaneParameters() {
  static const std::vector<std::string> parameters = {"size", "position", "invelocity",
                                                      "outvelocity"};
  return parameters;
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

StopTimes StopTimesOf(const host::RenderPlan& plan) {
  StopTimes times;
  for (const host::TourView& one : TimedTour(plan)) times.push_back({one.hold, one.go});
  return times;
}

EasingWords EasingBehind(const host::RenderPlan& plan, size_t stop) {
  EasingWords words;
  if (stop + 1 >= plan.views.size()) return words;
  words.out = WordFor("outvelocity", plan.views[stop].departure);
  words.in = WordFor("invelocity", plan.views[stop + 1].arrival);
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
  for (size_t i = 0; i + 1 < plan.views.size(); ++i) {
    const EasingWords words = EasingBehind(plan, i);
    const QString out = QString::fromStdString(words.out.empty() ? "ease" : words.out);
    const QString in = QString::fromStdString(words.in.empty() ? "ease" : words.in);
    scene.easing.push_back({out == in ? out : out + " – " + in, CurveOf(words)});
  }
  if (!plan.views.empty()) return scene;
  for (const std::string& parameter : LaneParameters()) {
    const host::Setting* setting = plan.FindSetting(parameter);
    if (setting == nullptr || setting->keys.empty()) continue;
    KeyLane lane{LaneName(parameter), {}, {}};
    for (const host::SettingKey& key : setting->keys) {
      lane.times.push_back(key.time);
      lane.values.push_back(ValueText(key.value));
    }
    scene.lanes.push_back(lane);
  }
  return scene;
}

}  // namespace kelto::editor
