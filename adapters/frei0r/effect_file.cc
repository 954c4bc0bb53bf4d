#include "adapters/frei0r/effect_file.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "host/base/error.h"
#include "host/effect/module_file.h"
#include "host/files/input_file.h"

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

}  // namespace

std::string FindEffectFile() {
  if (std::string named = host::ModuleFromEnvironment(); !named.empty()) return named;
  const fs::path beside = LibraryFolder() / host::kModuleName;
  if (host::IsFile(beside)) return beside.string();
  throw host::Error(beside.string() +
                    ": there is no such file; say where the effect's module is in " +
                    host::kModuleVariable);
}

}  // namespace kelto::frei0r
