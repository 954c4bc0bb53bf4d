// Lines for programs that spread work over cores and machines: a shell command each.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// The words with blanks between, each quoted. Throws Error for a word of more than one line, which
/// no line can hold.
std::string TaskLine(const std::vector<std::string>& words);

}  // namespace kelto::host
