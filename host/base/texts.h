// Numbers and lists as texts.
#pragma once

#include <string>

namespace kelto::host {

/// `value` with `decimals` digits behind the point, at most 20; a zero has no sign.
std::string FixedText(double value, int decimals);

/// The strings of a range with `between` between them: "png, tiff, jpg".
template <typename Strings>
std::string Joined(const Strings& strings, const char* between = ", ") {
  std::string text;
  bool first = true;
  for (const auto& string : strings) {
    if (!first) text += between;
    text += string;
    first = false;
  }
  return text;
}

}  // namespace kelto::host
