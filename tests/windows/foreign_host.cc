// A host that has nothing of ours beside it: loads the module that its first argument names, by the
// call that the second one names. Ends with 0, or with the system's error.
#include <windows.h>

#include <cwchar>

int main() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (count < 3) return 1000;
  const bool plain = std::wcscmp(words[2], L"plain") == 0;
  const HMODULE module = plain ? LoadLibraryW(words[1])
                               : LoadLibraryExW(words[1], nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == nullptr) return static_cast<int>(GetLastError());
  return GetProcAddress(module, "hfxStartUp_v1") != nullptr ? 0 : 1001;
}
