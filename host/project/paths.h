// Paths inside project files.
#pragma once

#include <string>

namespace kelto::host {

/// `named`, as a project at `project` names it, for use from the current folder.
std::string FromProject(const std::string& project, const std::string& named);

/// How a project at `project` names the file `path` of the current folder: relative and with
/// forward slashes when it lies beside or below, else in full.
std::string ForProject(const std::string& project, const std::string& path);

}  // namespace kelto::host
