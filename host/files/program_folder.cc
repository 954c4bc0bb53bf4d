#include "host/files/program_folder.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#endif

#include "host/files/input_file.h"
#include "host/files/path_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// A path as RFC 3986 wants it in a URL.
std::string PercentEncoded(const std::string& path) {
  constexpr std::string_view kPlain = "/-._~:";
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char letter : path) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < 0x80 && (std::isalnum(byte) != 0 || kPlain.find(letter) != std::string_view::npos)) {
      text += letter;
    } else {
      text += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return text;
}

}  // namespace

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

std::string SchemaUrl(const fs::path& programFolder) {
#if defined(_WIN32)
  const fs::path& installed = programFolder;
#else
  const fs::path installed = programFolder.parent_path();
#endif
  const fs::path schema = installed / "share" / "kelto" / "project.schema.json";
  if (!IsFile(schema)) return "";
  std::string path = TextOf(schema);
  if (fs::path::preferred_separator != '/') std::replace(path.begin(), path.end(), '\\', '/');
  // A drive's letter stands behind a slash, too.
  return (path.starts_with('/') ? "file://" : "file:///") + PercentEncoded(path);
}

}  // namespace kelto::host
