// Texts on the standard streams.
#pragma once

#include <cstdio>
#include <string_view>

namespace kelto::host {

/// Whether a stream goes to a terminal, which on Windows not every device is.
bool IsTerminal(std::FILE* stream);

/// Whether a terminal obeys control sequences; older consoles of Windows print them.
bool ObeysSequences(std::FILE* stream);

/// Writes all of a text before it returns; false, with errno, when that fails. A terminal of
/// Windows gets letters, whatever its code page is; files and pipes get UTF-8.
bool WriteText(std::FILE* stream, std::string_view text);

}  // namespace kelto::host
