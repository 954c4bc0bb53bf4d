#include "host/commands/tour_options.h"

#include <CLI/CLI.hpp>
#include <map>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr const char* kView = "view";
constexpr const char* kHold = "hold";
constexpr const char* kGo = "go";
double ParseTime(const std::string& text, double least) {
  const auto seconds = ParseNumber(text);
  if (!seconds || !(*seconds >= least && *seconds <= kLongestTime)) {
    throw UsageError("takes seconds from " + NumberText(least) + ", up to a day, such as 2 or 0.5");
  }
  return *seconds;
}

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

std::vector<TourView> TourOf(const std::vector<TourWord>& words,
                             const std::function<GivenView(const std::string&)>& read) {
  std::vector<TourView> tour;
  for (const auto& [name, text] : words) {
    const std::string option = "--" + name;
    if (name == kView) {
      tour.push_back({read(text)});
      continue;
    }
    if (tour.empty()) throw UsageError(option + " " + text + ": belongs after the --view it is of");
    double& time = name == kHold ? tour.back().hold : tour.back().go;
    if (time > 0.0) throw UsageError(option + " " + text + ": is given twice for one --view");
    const double least = name == kHold ? 0.0 : kShortestGo;
    time =
        ReadOption(option, text, [least](const std::string& one) { return ParseTime(one, least); });
  }
  if (!tour.empty() && tour.back().go > 0.0) {
    throw UsageError("--go: after the last --view there is no other to go to");
  }
  return tour;
}

}  // namespace kelto::host
