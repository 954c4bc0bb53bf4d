#include "host/project/layout.h"

#include <nlohmann/json.hpp>

#include "host/base/error.h"

namespace kelto::host {
namespace {

using nlohmann::ordered_json;

/// A part with its name in front, when it has one.
struct Part {
  std::string name;
  const ordered_json& value;
};

std::vector<Part> PartsOf(const ordered_json& value) {
  std::vector<Part> parts;
  if (value.is_object()) {
    for (const auto& [name, part] : value.items()) {
      parts.push_back({ordered_json(name).dump() + ": ", part});
    }
  } else {
    for (const ordered_json& part : value) parts.push_back({"", part});
  }
  return parts;
}

std::string Closed(const ordered_json& value, const std::string& parts) {
  std::string text(1, value.is_object() ? '{' : '[');
  text += parts;
  text += value.is_object() ? '}' : ']';
  return text;
}

std::string InOneLine(const ordered_json& value) {
  if (!value.is_structured()) return value.dump();
  std::string text;
  for (const Part& part : PartsOf(value)) {
    text += (text.empty() ? "" : ", ") + part.name + InOneLine(part.value);
  }
  return Closed(value, text);
}

/// `used` characters stand in the line already; the lines below begin after `indent` spaces.
std::string Lines(const ordered_json& value, size_t indent, size_t used) {
  std::string line = InOneLine(value);
  // A comma may follow. The document itself is always taken apart.
  if (used > 0 && (!value.is_structured() || used + line.size() < kMaxLine)) return line;
  const std::string margin(indent + 2, ' ');
  std::string text;
  for (const Part& part : PartsOf(value)) {
    text += text.empty() ? "\n" : ",\n";
    text += margin + part.name + Lines(part.value, indent + 2, indent + 2 + part.name.size());
  }
  text.append(1, '\n').append(indent, ' ');
  return Closed(value, text);
}

}  // namespace

std::string LaidOut(const ordered_json& value) { return LaidOut(value, 0, 0) + "\n"; }

std::string LaidOut(const ordered_json& value, size_t indent, size_t used) {
  try {
    return Lines(value, indent, used);
  } catch (const ordered_json::exception&) {
    throw Error("a path in it is not written in UTF-8, as JSON is");
  }
}

}  // namespace kelto::host
