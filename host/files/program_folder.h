// Where the running program lies, and so what was installed or built with it.
#pragma once

#include <filesystem>
#include <string>

namespace kelto::host {

/// The running program's file; empty when the system does not report it.
std::filesystem::path ProgramFile();
/// The folder that it is in; empty, too, then.
std::filesystem::path ProgramFolder();

}  // namespace kelto::host
