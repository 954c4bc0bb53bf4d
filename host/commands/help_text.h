// Help as people read it on a terminal.
#pragma once

#include <string>

namespace kelto::host {

/// Breaks lines that are longer than `columns` between words; what goes on in the next line stands
/// under the description of its option, or under the line's own beginning.
std::string Wrapped(const std::string& text, size_t columns);

/// The width of the terminal that the standard output is, 80 where it is none or does not say.
size_t HelpColumns();

}  // namespace kelto::host
