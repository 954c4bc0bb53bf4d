// Reading the text of an option.
#pragma once

#include <string>

#include "host/error.h"

namespace kelto::host {

/// What `parse` makes of an option's text; its complaint is told with the option in front.
template <typename Parse>
auto ReadOption(const std::string& option, const std::string& text, Parse parse) {
  constexpr size_t kMaxMessage = 300;
  try {
    return parse(text);
  } catch (const UsageError& error) {
    throw UsageError(option + " " + text.substr(0, kMaxMessage) + ": " + error.what());
  }
}

}  // namespace kelto::host
