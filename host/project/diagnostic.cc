#include "host/project/diagnostic.h"

#include <nlohmann/json.hpp>

namespace kelto::host {
namespace {

using nlohmann::json;

constexpr size_t kMaxShown = 60;
constexpr auto kReplace = json::error_handler_t::replace;

bool IsIndex(const std::string& step) { return step.starts_with('['); }

}  // namespace

std::string IndexStep(size_t index) {
  std::string step = "[";
  step += std::to_string(index);
  step += ']';
  return step;
}

std::string ToString(const FieldPath& path) {
  std::string text;
  for (const std::string& step : path) {
    text += text.empty() || IsIndex(step) ? "" : ".";
    const std::string quoted = json(step.substr(0, kMaxShown)).dump(-1, ' ', false, kReplace);
    // A line break in a name stays one line; a name without letters shows as its quotation marks.
    text += step.empty() ? quoted : quoted.substr(1, quoted.size() - 2);
    if (step.size() > kMaxShown) text += "...";
  }
  return text.empty() ? "the file" : text;
}

std::string Shown(const json& value) {
  std::string text = value.dump(-1, ' ', true, kReplace);
  if (text.size() <= kMaxShown) return text;
  return text.substr(0, kMaxShown) + "...";
}

}  // namespace kelto::host
