#include "platform/win32.h"

#include <cstdio>

namespace {

#if defined(_WIN32)

const Win32Calls kSystemCalls = {
    ::GetDesktopWindow, ::GetOpenFileNameA, ::MessageBoxA,      ::WNetGetUniversalNameA,
    ::NetShareEnum,     ::NetWkstaGetInfo,  ::NetApiBufferFree,
};

#else

HWND NoDesktop() { return nullptr; }

BOOL CancelDialog(OPENFILENAMEA*) { return 0; }

int PrintOnErrorStream(HWND, const char* text, const char* caption, unsigned) {
  std::fprintf(stderr, "%s: %s\n", caption, text);
  return IDOK;
}

DWORD NoMappedDrive(const char*, DWORD, void*, DWORD*) { return ERROR_NOT_CONNECTED; }

NET_API_STATUS NoShares(wchar_t*, DWORD, uint8_t** buffer, DWORD, DWORD* entriesRead,
                        DWORD* totalEntries, DWORD*) {
  *buffer = nullptr;
  *entriesRead = *totalEntries = 0;
  return NO_ERROR;
}

NET_API_STATUS NoWorkstation(wchar_t*, DWORD, uint8_t** buffer) {
  *buffer = nullptr;
  return ERROR_NOT_SUPPORTED;
}

NET_API_STATUS NothingToFree(void*) { return NO_ERROR; }

constexpr Win32Calls kSystemCalls = {
    NoDesktop, CancelDialog,  PrintOnErrorStream, NoMappedDrive,
    NoShares,  NoWorkstation, NothingToFree,
};

#endif

Win32Calls calls = kSystemCalls;

}  // namespace

Win32Calls& win32() { return calls; }

Win32Calls DefaultWin32Calls() { return kSystemCalls; }
