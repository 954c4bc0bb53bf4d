#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <iterator>
#include <string_view>

#include "host/base/error.h"
#include "host/base/windows_text.h"
#include "host/files/path_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// Calls that make folders take paths of less than 248 units, since room for a short name must be
/// left below them; those for files some more.
constexpr size_t kTooLong = 248;
constexpr std::wstring_view kAnyLength = L"\\\\?\\";
constexpr std::wstring_view kNetworkOfAnyLength = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";

std::wstring FullName(const std::wstring& name) {
  std::wstring full(name.size() + MAX_PATH, L'\0');
  DWORD size =
      GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (size > full.size()) {
    full.resize(size);
    size = GetFullPathNameW(name.c_str(), size, full.data(), nullptr);
  }
  full.resize(size);
  return full;
}

/// The form of `name` that calls take at any length; `name` itself where it needs none.
std::wstring Reachable(const std::wstring& name) {
  if (name.empty() || name.starts_with(kAnyLength) || name.starts_with(kDevice)) return name;
  const std::wstring full = FullName(name);
  if (full.size() < kTooLong || full.starts_with(kDevice)) return name;
  if (full.starts_with(L"\\\\")) return std::wstring(kNetworkOfAnyLength) + full.substr(2);
  return std::wstring(kAnyLength) + full;
}

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

}  // namespace

fs::path PathOf(const std::string& text) {
  const auto wide = WideText(text);
  if (!wide) throw Error(text + ": is not UTF-8; write names in UTF-8");
  return *wide;
}

std::string TextOf(const fs::path& path) { return Utf8Text(path.native()); }

fs::path ForCalls(const fs::path& path) { return Reachable(path.native()); }

std::FILE* OpenFile(const fs::path& path, const char* mode) {
  const std::string_view letters(mode);
  return _wfopen(Reachable(path.native()).c_str(),
                 std::wstring(letters.begin(), letters.end()).c_str());
}

std::FILE* MakeFile(const fs::path& path) {
  // The C library of Windows has no mode "x".
  const int file =
      _wopen(Reachable(path.native()).c_str(),
             _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
  return file < 0 ? nullptr : _fdopen(file, "w+b");
}

fs::file_status StatusOf(const fs::path& path) {
  const std::wstring name = Reachable(path.native());
  if (FullName(name).starts_with(kDevice)) return fs::file_status(fs::file_type::character);
  const DWORD marks = GetFileAttributesW(name.c_str());
  if (marks == INVALID_FILE_ATTRIBUTES) return fs::file_status(fs::file_type::not_found);
  const bool folder = (marks & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return fs::file_status(folder ? fs::file_type::directory : fs::file_type::regular);
}

std::vector<fs::path> EntriesOf(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW(Reachable((folder / L"*").native()).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    error = LastError();
    return entries;
  }
  do {
    const std::wstring_view name(found.cFileName);
    if (name != L"." && name != L"..") entries.push_back(folder / name);
  } while (FindNextFileW(search, &found));
  error = GetLastError() == ERROR_NO_MORE_FILES ? std::error_code() : LastError();
  FindClose(search);
  return entries;
}

void RemoveFile(const fs::path& path) { DeleteFileW(Reachable(path.native()).c_str()); }

std::string ReasonOf(const std::error_code& error) {
  if (error.category() != std::system_category()) return error.message();
  wchar_t text[512] = L"";
  DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                              static_cast<DWORD>(error.value()), 0, text,
                              static_cast<DWORD>(std::size(text)), nullptr);
  while (size > 0 && std::wstring_view(L".\r\n ").find(text[size - 1]) != std::wstring_view::npos) {
    --size;
  }
  if (size == 0) return "system error " + std::to_string(error.value());
  return Utf8Text({text, size});
}

}  // namespace kelto::host
