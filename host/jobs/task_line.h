// Lines for programs that spread work over cores and machines: a shell command each.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// `word`, of one line, as a POSIX shell reads it back. What a terminal would obey (see ShownText)
/// is left to the shell's printf.
std::string ShellQuoted(const std::string& word);

/// The words with blanks between, each quoted. Throws Error for a word of more than one line, which
/// no line can hold.
std::string TaskLine(const std::vector<std::string>& words);

}  // namespace kelto::host
