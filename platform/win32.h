// The few Win32 calls that the effect makes, reached through one table.
//
// On Windows the table holds the system's own functions. Elsewhere it holds a small subset: every
// dialog is answered as cancelled and every message goes to the error stream until the host puts
// its own functions into the table, and no network names exist until someone installs some. Tests
// replace entries on every system.
#pragma once

#include <cstdint>

#include "platform/api.h"

#if defined(_WIN32)

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
// windows.h first: the others need its types.
#include <windows.h>

#include <commdlg.h>
#include <lm.h>
#include <winnetwk.h>

// A macro of windows.h that would rename the effect's own operation wherever this header is seen.
#undef LoadImage

#define KELTO_WINAPI WINAPI

#else

#define KELTO_WINAPI

typedef int32_t BOOL;
typedef uint32_t DWORD;
typedef uint16_t WORD;
typedef void* HWND;
typedef void* HINSTANCE;
typedef DWORD NET_API_STATUS;

enum : DWORD {
  NO_ERROR = 0,
  ERROR_NOT_SUPPORTED = 50,
  ERROR_MORE_DATA = 234,
  ERROR_NOT_CONNECTED = 2250,
};

enum : uint32_t { MB_OK = 0 };
enum : int { IDOK = 1 };
enum : DWORD { OFN_PATHMUSTEXIST = 0x0800, OFN_FILEMUSTEXIST = 0x1000 };
enum : DWORD { UNIVERSAL_NAME_INFO_LEVEL = 1 };
enum : DWORD { MAX_PREFERRED_LENGTH = 0xFFFFFFFF };
enum : DWORD { DLL_PROCESS_DETACH = 0, DLL_PROCESS_ATTACH = 1 };

struct OPENFILENAMEA {
  DWORD lStructSize;
  HWND hwndOwner;
  HINSTANCE hInstance;
  const char* lpstrFilter;
  char* lpstrCustomFilter;
  DWORD nMaxCustFilter;
  DWORD nFilterIndex;
  char* lpstrFile;
  DWORD nMaxFile;
  char* lpstrFileTitle;
  DWORD nMaxFileTitle;
  const char* lpstrInitialDir;
  const char* lpstrTitle;
  DWORD Flags;
  WORD nFileOffset;
  WORD nFileExtension;
  const char* lpstrDefExt;
  intptr_t lCustData;
  void* lpfnHook;
  const char* lpTemplateName;
  void* pvReserved;
  DWORD dwReserved;
  DWORD FlagsEx;
};

struct UNIVERSAL_NAME_INFOA {
  char* lpUniversalName;
};

struct SHARE_INFO_2 {
  wchar_t* shi2_netname;
  DWORD shi2_type;
  wchar_t* shi2_remark;
  DWORD shi2_permissions;
  DWORD shi2_max_uses;
  DWORD shi2_current_uses;
  wchar_t* shi2_path;
  wchar_t* shi2_passwd;
};

struct WKSTA_INFO_100 {
  DWORD wki100_platform_id;
  wchar_t* wki100_computername;
  wchar_t* wki100_langroup;
  DWORD wki100_ver_major;
  DWORD wki100_ver_minor;
};

#endif

/// The size that the open-file dialog's record announces: that of the 32-bit record.
constexpr DWORD kOpenFileNameSize = 88;

/// The calls. No entry is ever null. Strings that cross here are 8-bit unless wchar_t. What each
/// does off Windows by itself is said last.
struct Win32Calls {
  /// The window that owns dialogs. Null.
  HWND(KELTO_WINAPI* GetDesktopWindow)();
  /// Runs the modal open-file dialog; 1 when the user picked a file, whose full path is then in
  /// `lpstrFile` (at most `nMaxFile` bytes with its zero), 0 when cancelled. Always cancelled.
  BOOL(KELTO_WINAPI* GetOpenFileNameA)(OPENFILENAMEA* dialog);
  /// Shows a message and returns the button pressed. Writes to the error stream, returns IDOK.
  int(KELTO_WINAPI* MessageBoxA)(HWND owner, const char* text, const char* caption, unsigned type);
  /// Fills `buffer` with a UNIVERSAL_NAME_INFOA that points into it: the network form of a path on
  /// a mapped drive. ERROR_MORE_DATA with the size needed when the buffer is too small.
  /// ERROR_NOT_CONNECTED: no drive is mapped.
  DWORD(KELTO_WINAPI* WNetGetUniversalNameA)
  (const char* localPath, DWORD level, void* buffer, DWORD* bufferSize);
  /// Lists the folders that a machine (null: this one) shares, in a buffer for NetApiBufferFree;
  /// ERROR_MORE_DATA when another call goes on from `resumeHandle`. None are shared.
  NET_API_STATUS(KELTO_WINAPI* NetShareEnum)
  (wchar_t* server, DWORD level, uint8_t** buffer, DWORD preferredLength, DWORD* entriesRead,
   DWORD* totalEntries, DWORD* resumeHandle);
  /// Describes a machine (null: this one; level 100: WKSTA_INFO_100), in a buffer for
  /// NetApiBufferFree. ERROR_NOT_SUPPORTED.
  NET_API_STATUS(KELTO_WINAPI* NetWkstaGetInfo)(wchar_t* server, DWORD level, uint8_t** buffer);
  /// Frees what the two calls above returned. Does nothing.
  NET_API_STATUS(KELTO_WINAPI* NetApiBufferFree)(void* buffer);
};

/// The process's table; entries may be replaced at any time between calls. Not locked.
KELTO_PLATFORM_API Win32Calls& win32();
/// The table as it stands at program start, for putting entries back.
KELTO_PLATFORM_API Win32Calls DefaultWin32Calls();
