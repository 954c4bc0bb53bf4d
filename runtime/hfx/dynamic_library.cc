#include "runtime/hfx/dynamic_library.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace hfx {

#if defined(_WIN32)

void* OpenLibrary(const std::filesystem::path& path, std::string* error) {
  if (HMODULE library = LoadLibraryW(path.c_str())) return library;
  const DWORD code = GetLastError();
  char text[512] = "";
  FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                 sizeof text, nullptr);
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
