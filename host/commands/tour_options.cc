#include "host/commands/tour_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr const char* kView = "view";
constexpr const char* kHold = "hold";
constexpr const char* kGo = "go";
constexpr double kUsualGo = 2.0;
constexpr double kLongest = 86400.0;

double ParseTime(const std::string& text, bool zero) {
  const auto seconds = ParseNumber(text);
  if (!seconds || !(*seconds >= 0.0 && *seconds <= kLongest) || (*seconds == 0.0 && !zero)) {
    throw UsageError("takes seconds, up to a day, such as 2 or 0.5");
  }
  return *seconds;
}

double WayOf(const TourView& view) { return view.go > 0.0 ? view.go : kUsualGo; }

}  // namespace

std::vector<TourWord> TourWordsOf(const CLI::App& command) {
  std::vector<TourWord> words;
  std::map<const CLI::Option*, size_t> seen;
  for (const CLI::Option* option : command.parse_order()) {
    if (option->get_lnames().empty()) continue;
    const std::string& name = option->get_lnames().front();
    const size_t place = seen[option]++;
    if (name != kView && name != kHold && name != kGo) continue;
    if (place < option->results().size()) words.emplace_back(name, option->results()[place]);
  }
  return words;
}

std::vector<TourView> TourOf(const std::vector<TourWord>& words) {
  std::vector<TourView> tour;
  for (const auto& [name, text] : words) {
    const std::string option = "--" + name;
    if (name == kView) {
      tour.push_back({text, 0.0, 0.0});
      continue;
    }
    if (tour.empty()) throw UsageError(option + " " + text + ": belongs after the --view it is of");
    double& time = name == kHold ? tour.back().hold : tour.back().go;
    if (time > 0.0) throw UsageError(option + " " + text + ": is given twice for one --view");
    time = ReadOption(option, text,
                      [&](const std::string& one) { return ParseTime(one, name == kHold); });
  }
  if (!tour.empty() && tour.back().go > 0.0) {
    throw UsageError("--go: after the last --view there is no other to go to");
  }
  return tour;
}

bool HasTimes(const std::vector<TourView>& tour) {
  return std::any_of(tour.begin(), tour.end(),
                     [](const TourView& view) { return view.hold > 0.0 || view.go > 0.0; });
}

double SecondsOf(const std::vector<TourView>& tour) {
  double seconds = 0.0;
  for (size_t i = 0; i < tour.size(); ++i) {
    seconds += tour[i].hold + (i + 1 < tour.size() ? WayOf(tour[i]) : 0.0);
  }
  return seconds;
}

std::vector<ViewKey> KeysOf(const std::vector<TourView>& tour, const std::vector<View>& views) {
  const double whole = SecondsOf(tour);
  std::vector<ViewKey> keys;
  double time = 0.0;
  const auto add = [&](const View& view) {
    keys.push_back({whole > 0.0 ? std::min(time / whole, 1.0) : 0.0, view, "", ""});
  };
  for (size_t i = 0; i < tour.size(); ++i) {
    add(views[i]);
    if (tour[i].hold > 0.0) {
      time += tour[i].hold;
      add(views[i]);
    }
    time += WayOf(tour[i]);
  }
  keys.back().time = 1.0;
  return keys;
}

}  // namespace kelto::host
