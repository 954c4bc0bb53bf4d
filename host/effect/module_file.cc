#include "host/effect/module_file.h"

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/files/program_folder.h"
#include "host/files/start.h"

namespace kelto::host {

namespace fs = std::filesystem;

std::vector<fs::path> SearchedFiles(const fs::path& executableFolder) {
#if defined(_WIN32)
  // Nothing above the program's folder: whoever unpacks it beside photographs owns that alone.
  return {executableFolder / kModuleName, executableFolder / "lib" / kModuleName};
#else
  const fs::path up = executableFolder.parent_path();
  return {up / "lib" / kModuleName, up / "lib" / "kelto" / kModuleName,
          executableFolder / kModuleName, fs::path(KELTO_INSTALLED_MODULES) / kModuleName};
#endif
}

std::string ModuleFromEnvironment() {
  std::string named = EnvironmentVariable(kModuleVariable);
  if (named.empty() || IsFile(named)) return named;
  throw Error(std::string(kModuleVariable) + "=" + named + ": there is no such file");
}

std::vector<std::string> ModuleFolders(const std::string& given) {
  std::vector<fs::path> files;
  const std::string named = EnvironmentVariable(kModuleVariable);
  if (!given.empty()) {
    files = {PathOf(given)};
  } else if (!named.empty()) {
    files = {PathOf(named)};
  } else {
    files = SearchedFiles(ProgramFolder());
  }
  std::vector<std::string> folders;
  folders.reserve(files.size());
  for (const fs::path& file : files) {
    folders.push_back(file.has_parent_path() ? TextOf(file.parent_path()) : ".");
  }
  return folders;
}

std::string FindModule(const std::string& given) {
  if (!given.empty()) {
    if (IsFile(given)) return given;
    throw Error("--module " + given + ": there is no such file");
  }
  if (std::string named = ModuleFromEnvironment(); !named.empty()) return named;
  std::vector<std::string> searched;
  for (const fs::path& path : SearchedFiles(ProgramFolder())) {
    if (IsFile(path)) return TextOf(path);
    searched.push_back(TextOf(path));
  }
  throw Error(std::string(kModuleName) + ": not found as " + Joined(searched) +
              "; say where it is with --module");
}

}  // namespace kelto::host
