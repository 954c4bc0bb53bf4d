#include "runtime/hfx/dynamic_library.h"

#if defined(_WIN32)
#include <windows.h>

#include <iterator>
#else
#include <dlfcn.h>
#endif

namespace hfx {

#if defined(_WIN32)

void* OpenLibrary(const std::filesystem::path& path, std::string* error) {
  // What the module needs lies beside it, or belongs to the host or the system. The current folder
  // is nobody's: a library in it may have come with a photograph.
  constexpr DWORD kOwnFolderHostAndSystem = 0x100 | 0x1000;  // LOAD_LIBRARY_SEARCH_...
  HMODULE library = LoadLibraryExW(path.c_str(), nullptr, kOwnFolderHostAndSystem);
  if (library == nullptr && GetLastError() == ERROR_INVALID_PARAMETER) {
    // Windows 7 without its updates.
    library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  }
  if (library != nullptr) return library;
  const DWORD code = GetLastError();
  wchar_t wide[512] = L"";
  char text[3 * sizeof wide] = "";
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, wide,
                 static_cast<DWORD>(std::size(wide)), nullptr);
  WideCharToMultiByte(CP_UTF8, 0, wide, -1, text, sizeof text, nullptr, nullptr);
  *error = text[0] != '\0' ? text : "system error " + std::to_string(code);
  return nullptr;
}

void* FindSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

#else

void* OpenLibrary(const std::filesystem::path& path, std::string* error) {
  if (void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return library;
  const char* text = dlerror();
  *error = text != nullptr ? text : "unknown reason";
  return nullptr;
}

void* FindSymbol(void* library, const char* name) { return dlsym(library, name); }

void CloseLibrary(void* library) { dlclose(library); }

#endif

}  // namespace hfx
