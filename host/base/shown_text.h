// Names as a terminal may show them.
#pragma once

#include <string>
#include <string_view>

namespace kelto::host {

/// `text`, which may hold names that somebody else chose, as one line that a terminal shows and
/// does not obey: control characters (C0, DEL and, in UTF-8, C1), line separators and characters
/// that turn the direction of writing become "\n", "\x1b" or "\u202e", and bytes that are not UTF-8
/// become
/// "\xff". Everything else stays as it is, so that the result of this is its own.
std::string ShownText(std::string_view text);

/// JSON of any form, with what ShownText escapes written as JSON's own escapes: it reads as the
/// same values. `json` is UTF-8 and has no control characters below U+0020 within its texts.
std::string ShownJson(std::string_view json);

}  // namespace kelto::host
