#include "host/files/program_folder.h"

#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace kelto::host {
namespace fs = std::filesystem;

fs::path ProgramFile() {
#if defined(_WIN32)
  std::wstring name(32768, L'\0');  // the longest that there is
  name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return name;
#else
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
#endif
}

fs::path ProgramFolder() { return ProgramFile().parent_path(); }

}  // namespace kelto::host
