// Where the effect's module is.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kelto::host {

inline constexpr const char* kModuleName = "KeltoPanAndZoom.hfx";
inline constexpr const char* kModuleVariable = "KELTO_MODULE";

/// The file that the environment variable KELTO_MODULE names, empty when it is not set. Throws
/// Error when that file is not there.
std::string ModuleFromEnvironment();

/// The module file to load: `given` when not empty; else what the environment variable KELTO_MODULE
/// names; else the first that exists of SearchedFiles. Throws Error when it is not there.
std::string FindModule(const std::string& given);

/// The folders of the files that FindModule would look at, whether they are there or not: the
/// module's own libraries lie beside it.
std::vector<std::string> ModuleFolders(const std::string& given);

/// Where a module is looked for that nobody named: beside an executable in `executableFolder` as
/// built, as installed, in the same folder, and where this build installs; on Windows in the same
/// folder and in "lib" in it.
std::vector<std::filesystem::path> SearchedFiles(const std::filesystem::path& executableFolder);

}  // namespace kelto::host
