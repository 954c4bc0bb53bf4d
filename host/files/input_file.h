// Files that are there to be read.
#pragma once

#include <filesystem>
#include <string>

namespace kelto::host {

/// Whether there is a file of that name; false, too, where that is unknown.
bool IsFile(const std::filesystem::path& path);
/// The same of a path that is a text.
bool IsFile(const std::string& path);

/// Throws Error, which begins with the path, unless there is an ordinary file of that name. A pipe
/// could be waited for without end. `meaning` says what the file should be, such as "a picture".
void CheckFile(const std::string& path, const std::string& meaning);

}  // namespace kelto::host
