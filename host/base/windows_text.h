// Texts for the calls of Windows, which take and return 16-bit units. Only there.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/base/utf16.h"

namespace kelto::host {

/// The 16-bit form of a UTF-8 text; nothing when it is not UTF-8.
inline std::optional<std::wstring> WideText(std::string_view utf8) {
  const auto units = Utf16Of(utf8);
  if (!units) return std::nullopt;
  return std::wstring(units->begin(), units->end());
}

/// The UTF-8 form of a 16-bit text.
inline std::string Utf8Text(std::wstring_view wide) {
  return Utf8Of(std::u16string(wide.begin(), wide.end()));
}

/// The UTF-8 form of a text in the system's code page, which is what the effect and its dialogs
/// speak.
std::string FromCodePage(const std::string& text);

}  // namespace kelto::host
