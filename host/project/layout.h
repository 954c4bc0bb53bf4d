// How JSON files of this project look.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kelto::host {

/// `value` as text: objects and arrays in one line where it stays short, their parts in a line each
/// where not; numbers so that they read back the same. Throws Error for a text that is not UTF-8.
std::string LaidOut(const nlohmann::ordered_json& value);

/// Characters of a line at most, where it can be helped.
constexpr size_t kMaxLine = 100;

/// The same of a value within a text: `used` characters, one at least, stand in its line already,
/// and that line begins after `indent` spaces.
std::string LaidOut(const nlohmann::ordered_json& value, size_t indent, size_t used);

}  // namespace kelto::host
