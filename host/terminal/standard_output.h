// What a command prints for its reader, on the standard output: lists, scripts, help.
#pragma once

#include <string>

namespace kelto::host {

/// Writes `text` on the standard output, all of it before it returns. Throws Error when that takes
/// no more, as a file on a full disk, or ToldError when its reader has gone, as `head` does after
/// some lines.
void PrintResult(const std::string& text);

}  // namespace kelto::host
