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

/// Whether an integer is as good: not for -0, nor where numbers lie more than 1 apart.
bool IsWhole(double number) {
  constexpr double kMax = 9007199254740992.0;
  return std::abs(number) <= kMax && std::trunc(number) == number &&
         !(number == 0.0 && std::signbit(number));
}

/// The parser's message without the name of its exception.
std::string Plain(const std::string& message) {
  const size_t end = message.find("] ");
  return message.starts_with('[') && end != std::string::npos ? message.substr(end + 2) : message;
}

/// Goes over a text before any of it is kept, and throws at the first thing that it must not have.
/// The library's own way of looking on while it parses takes time by the square of a list's length.
class Strict : public nlohmann::json_sax<json> {
 public:
  bool null() override { return CountEntry(); }
  bool boolean(bool) override { return CountEntry(); }
  bool number_integer(number_integer_t) override { return CountEntry(); }
  bool number_unsigned(number_unsigned_t) override { return CountEntry(); }
  bool number_float(number_float_t, const string_t&) override { return CountEntry(); }
  bool binary(binary_t&) override { return CountEntry(); }
  bool string(string_t& text) override {
    CountEntry();
    return CheckLength(text);
  }
  bool start_object(size_t) override { return Open(); }
  bool start_array(size_t) override { return Open(); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(string_t& name) override {
    CheckLength(name);
    // The parser itself would keep the last of them.
    if (!open_.back().names.insert(name).second) {
      throw Error("has the field " + Shown(json(name)) + " twice in one object");
    }
    return true;
  }
  bool parse_error(size_t, const std::string&, const json::exception& error) override {
    constexpr size_t kMaxMessage = 200;
    throw Error("is not JSON: " + Plain(error.what()).substr(0, kMaxMessage));
  }

 private:
  /// An object or array whose end has not come.
  struct Container {
    std::set<std::string> names;
    size_t entries = 0;
  };

  bool Open() {
    CountEntry();
    if (open_.size() >= kMaxJsonDepth) {
      throw Error("has more than " + std::to_string(kMaxJsonDepth) +
                  " objects and arrays within each other");
    }
    open_.emplace_back();
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  bool CountEntry() {
    if (!open_.empty() && ++open_.back().entries > kMaxJsonEntries) {
      throw Error("has more than " + std::to_string(kMaxJsonEntries) +
                  " entries in one object or array");
    }
    if (++values_ > kMaxJsonValues) {
      throw Error("has more than " + std::to_string(kMaxJsonValues) + " values");
    }
    return true;
  }

  static bool CheckLength(const std::string& text) {
    if (text.size() > kMaxJsonString) {
      throw Error("has a text of more than " + std::to_string(kMaxJsonString) + " bytes");
    }
    return true;
  }

  std::vector<Container> open_;
  size_t values_ = 0;  ///< of the whole text
};

/// Gives each number the type by which the validator takes it for what it is.
void SettleNumbers(json& value) {
  if (value.is_structured()) {
    for (json& entry : value) SettleNumbers(entry);
    return;
  }
  // The validator would take those of 64 bits for negative ones.
  if (value.is_number_unsigned() && value.get<uint64_t>() > INT64_MAX) {
    value = value.get<double>();
  }
  // The schema's integers may be written 2.0; the validator's may not.
  if (value.is_number_float() && IsWhole(value.get<double>())) {
    value = static_cast<int64_t>(value.get<double>());
  }
}

}  // namespace

json ParseJson(const std::string& text) {
  if (text.size() > kMaxJsonText) {
    throw Error("is larger than " + std::to_string(kMaxJsonText >> 20) + " MiB");
  }
  Strict strict;
  json::sax_parse(text, &strict);
  json value = json::parse(text);
  SettleNumbers(value);
  return value;
}

}  // namespace kelto::host
