// How JSON files of this project look.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kelto::host {

/// `value` as text: objects and arrays in one line where it stays short, their parts in a line each
/// where not; numbers so that they read back the same. Throws Error for a text that is not UTF-8.
std::string LaidOut(const nlohmann::ordered_json& value);

}  // namespace kelto::host
