#include "host/effect/module_file.h"

#include <cstdlib>

#include "host/base/error.h"
#include "host/files/input_file.h"
#include "host/files/narrow_text.h"
#include "host/files/program_folder.h"

namespace kelto::host {

namespace fs = std::filesystem;

std::vector<fs::path> SearchedFiles(const fs::path& executableFolder) {
  const fs::path up = executableFolder.parent_path();
  return {up / "lib" / kModuleName, up / "lib" / "kelto" / kModuleName,
          executableFolder / kModuleName, fs::path(KELTO_INSTALLED_MODULES) / kModuleName};
}

std::string ModuleFromEnvironment() {
  const char* named = std::getenv(kModuleVariable);
  if (named == nullptr || *named == '\0') return "";
  if (IsFile(named)) return named;
  throw Error(std::string(kModuleVariable) + "=" + named + ": there is no such file");
}

std::string FindModule(const std::string& given) {
  if (!given.empty()) {
    if (IsFile(given)) return given;
    throw Error("--module " + given + ": there is no such file");
  }
  if (std::string named = ModuleFromEnvironment(); !named.empty()) return named;
  std::string searched;
  for (const fs::path& path : SearchedFiles(ProgramFolder())) {
    if (IsFile(path)) return NarrowText(path);
    searched += searched.empty() ? "" : ", ";
    searched += NarrowText(path);
  }
  throw Error(std::string(kModuleName) + ": not found as " + searched +
              "; say where it is with --module");
}

}  // namespace kelto::host
