#include "host/project/json_text.h"

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "host/base/error.h"
#include "host/project/diagnostic.h"

namespace kelto::host {
namespace {

using nlohmann::json;

/// Looks at each piece while the text is parsed, and stops the parser by an exception.
class Strict {
 public:
  bool operator()(int depth, json::parse_event_t event, json& parsed) {
    CountEntry(event);
    switch (event) {
      case json::parse_event_t::object_start:
      case json::parse_event_t::array_start:
        if (depth >= kMaxJsonDepth) {
          throw Error("has more than " + std::to_string(kMaxJsonDepth) +
                      " objects and arrays within each other");
        }
        names_.emplace_back();
        entries_.push_back(0);
        break;
      case json::parse_event_t::object_end:
      case json::parse_event_t::array_end:
        names_.pop_back();
        entries_.pop_back();
        break;
      case json::parse_event_t::key:
        CheckLength(parsed);
        // The parser itself would keep the last of them.
        if (!names_.back().insert(parsed.get<std::string>()).second) {
          throw Error("has the field " + Shown(parsed) + " twice in one object");
        }
        break;
      case json::parse_event_t::value:
        if (parsed.is_string()) CheckLength(parsed);
        // The validator would take those of 64 bits for negative ones.
        if (parsed.is_number_unsigned() && parsed.get<uint64_t>() > INT64_MAX) {
          parsed = parsed.get<double>();
        }
        // The schema's integers may be written 2.0; the validator's may not.
        if (parsed.is_number_float() && IsWhole(parsed.get<double>())) {
          parsed = static_cast<int64_t>(parsed.get<double>());
        }
        break;
    }
    return true;
  }

 private:
  /// While parsing, as each takes memory from then on and time to be checked.
  void CountEntry(json::parse_event_t event) {
    const bool begins = event == json::parse_event_t::value ||
                        event == json::parse_event_t::object_start ||
                        event == json::parse_event_t::array_start;
    if (!begins) return;
    if (!entries_.empty() && ++entries_.back() > kMaxJsonEntries) {
      throw Error("has more than " + std::to_string(kMaxJsonEntries) +
                  " entries in one object or array");
    }
    if (++values_ > kMaxJsonValues) {
      throw Error("has more than " + std::to_string(kMaxJsonValues) + " values");
    }
  }

  /// Whether an integer is as good: not for -0, nor where numbers lie more than 1 apart.
  static bool IsWhole(double number) {
    constexpr double kMax = 9007199254740992.0;
    return std::abs(number) <= kMax && std::trunc(number) == number &&
           !(number == 0.0 && std::signbit(number));
  }

  static void CheckLength(const json& text) {
    if (text.get_ref<const std::string&>().size() > kMaxJsonString) {
      throw Error("has a text of more than " + std::to_string(kMaxJsonString) + " bytes");
    }
  }

  std::vector<std::set<std::string>> names_;
  std::vector<size_t> entries_;  ///< of the objects and arrays that are open
  size_t values_ = 0;            ///< of the whole text
};

/// The parser's message without the name of its exception.
std::string Plain(const std::string& message) {
  const size_t end = message.find("] ");
  return message.starts_with('[') && end != std::string::npos ? message.substr(end + 2) : message;
}

}  // namespace

json ParseJson(const std::string& text) {
  constexpr size_t kMaxMessage = 200;
  if (text.size() > kMaxJsonText) {
    throw Error("is larger than " + std::to_string(kMaxJsonText >> 20) + " MiB");
  }
  try {
    Strict strict;
    return json::parse(text, [&](int depth, json::parse_event_t event, json& parsed) {
      return strict(depth, event, parsed);
    });
  } catch (const json::exception& error) {
    throw Error("is not JSON: " + Plain(error.what()).substr(0, kMaxMessage));
  }
}

}  // namespace kelto::host
