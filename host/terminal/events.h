// What programs read of the command: a JSON object a line, on the error stream.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "host/base/variant.h"

namespace kelto::host {

using EventValue = Variant<int64_t, double, std::string>;

/// Prints {"event": `name`, ...} with the fields behind it, in their order. Bytes of texts that are
/// not UTF-8 become U+FFFD.
void PrintEvent(const std::string& name,
                std::initializer_list<std::pair<const char*, EventValue>> fields);

}  // namespace kelto::host
