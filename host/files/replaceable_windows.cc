#include <windows.h>

#include <string_view>

#include "host/files/path_text.h"
#include "host/files/replaceable.h"

namespace kelto::host {

std::string WhyNotReplaceable(const std::filesystem::path& path) {
  // "NUL", and on most versions "con.y4m" in any folder.
  constexpr DWORD kRoom = 16;  // for any of them
  wchar_t full[kRoom] = L"";
  const DWORD size = GetFullPathNameW(path.c_str(), kRoom, full, nullptr);
  if (size < kRoom && std::wstring_view(full).starts_with(L"\\\\.\\")) {
    return "is the name of a device; give the file another name, or write to the standard output "
           "(-)";
  }
  const DWORD marks = GetFileAttributesW(ForCalls(path).c_str());
  if (marks == INVALID_FILE_ATTRIBUTES) return "";
  if ((marks & FILE_ATTRIBUTE_READONLY) != 0) {
    return "is marked read-only; take the mark away or give another name";
  }
  constexpr DWORD kAnyShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file =
      CreateFileW(ForCalls(path).c_str(), DELETE, kAnyShare, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    CloseHandle(file);
    return "";
  }
  switch (GetLastError()) {
    case ERROR_SHARING_VIOLATION:
      return "is in use by another program; close it there or give another name";
    case ERROR_ACCESS_DENIED:
      return "may not be replaced by this user; give another name";
    default:
      return "";
  }
}

}  // namespace kelto::host
