#include <windows.h>

#include <shellapi.h>

#include "host/base/windows_text.h"
#include "host/files/start.h"

namespace kelto::host {

std::vector<std::string> CommandLineWords(int argc, char** argv) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> words;
  for (int i = 0; i < count; ++i) words.push_back(Utf8Text(wide[i]));
  LocalFree(wide);
  return words;
}

std::string EnvironmentVariable(const char* name) {
  const std::wstring wide = WideText(name).value_or(L"");
  std::wstring value(GetEnvironmentVariableW(wide.c_str(), nullptr, 0), L'\0');
  const auto room = static_cast<DWORD>(value.size());
  const DWORD size = GetEnvironmentVariableW(wide.c_str(), value.data(), room);
  value.resize(size < room ? size : 0);
  return Utf8Text(value);
}

void SearchNoLibrariesInTheCurrentFolder() {
  SetDllDirectoryW(L"");
  // Windows 7 has this one by an update only.
  using SetDirectories = BOOL(WINAPI*)(DWORD);
  const auto set = reinterpret_cast<SetDirectories>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories")));
  constexpr DWORD kProgramAndSystem = 0x200 | 0x800;  // LOAD_LIBRARY_SEARCH_...
  if (set != nullptr) set(kProgramAndSystem);
}

}  // namespace kelto::host
