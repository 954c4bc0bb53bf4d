// UTF-8, in which the command keeps its texts, and the 16-bit units of Windows.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelto::host {

/// The 16-bit units of a text; nothing when it is not UTF-8. A surrogate coded by itself, which
/// strict UTF-8 does not have, becomes that unit, since names on Windows may hold any units.
std::optional<std::u16string> Utf16Of(std::string_view utf8);

/// The text of 16-bit units; unpaired surrogates are coded by themselves, so that Utf16Of returns
/// the same units again.
std::string Utf8Of(std::u16string_view utf16);

}  // namespace kelto::host
