// Reading the text of an option.
#pragma once

#include <string>

#include "host/base/error.h"

namespace kelto::host {

/// What `parse` makes of an option's text; its error gets the option in front.
template <typename Parse>
auto ReadOption(const std::string& option, const std::string& text, Parse parse) {
  constexpr size_t kMaxMessage = 300;
  try {
    return parse(text);
  } catch (const UsageError& error) {
    throw UsageError(option + " " + text.substr(0, kMaxMessage) + ": " + error.what());
  }
}

/// What is wrong with the text of an option that names a file to be written: another option, where
/// the name was forgotten.
inline std::string FileText(const std::string& text) {
  return text.starts_with("--") ? "lacks its FILE; " + text + " is an option" : "";
}

}  // namespace kelto::host
