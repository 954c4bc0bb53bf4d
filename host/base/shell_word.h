// Words as a POSIX shell reads them.
#pragma once

#include <string>

namespace kelto::host {

/// `word`, of one line, as a POSIX shell reads it back. What a terminal would obey (see ShownText)
/// is left to the shell's printf.
std::string ShellQuoted(const std::string& word);

}  // namespace kelto::host
