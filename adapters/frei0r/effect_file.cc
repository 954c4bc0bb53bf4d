#include "adapters/frei0r/effect_file.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/error.h"
#include "host/session/module_file.h"

namespace kelto::frei0r {
namespace {

namespace fs = std::filesystem;

/// The folder of the library that this code is in, wherever a host loaded it from.
fs::path LibraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&FindEffectFile), &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  std::error_code error;
  const fs::path file = fs::canonical(info.dli_fname, error);
  return error ? fs::path(info.dli_fname).parent_path() : file.parent_path();
}

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

}  // namespace

std::string FindEffectFile() {
  const char* named = std::getenv(host::kModuleVariable);
  if (named != nullptr && *named != '\0') {
    if (IsFile(named)) return named;
    throw host::Error(std::string(host::kModuleVariable) + "=" + named + ": there is no such file");
  }
  const fs::path beside = LibraryFolder() / host::kModuleName;
  if (IsFile(beside)) return beside.string();
  throw host::Error(beside.string() +
                    ": there is no such file; say where the effect's module is in " +
                    host::kModuleVariable);
}

}  // namespace kelto::frei0r
