// A library that somebody left in a folder: notes in the file that KELTO_PLANTED names that it was
// loaded, and is nothing else.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
  wchar_t name[MAX_PATH] = L"";
  if (reason == DLL_PROCESS_ATTACH &&
      GetEnvironmentVariableW(L"KELTO_PLANTED", name, MAX_PATH) > 0) {
    CloseHandle(CreateFileW(name, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  }
  return TRUE;
}
