// Programs that are installed beside this one.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelto::host {

/// Runs the program `words[0]`, as a shell would find it, with these arguments, and gives what it
/// prints on its standard output, a mebibyte at the most; nothing where no such program is
/// installed. It runs outside of the sandbox, which this process must not have entered: the sandbox
/// starts no programs. Throws Error where the program fails.
std::optional<std::string> OutputOfProgram(const std::vector<std::string>& words);

}  // namespace kelto::host
