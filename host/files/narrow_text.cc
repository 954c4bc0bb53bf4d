#include "host/files/narrow_text.h"

#if defined(_WIN32)
#include <windows.h>

#include <clocale>
#endif

namespace kelto::host {

#if defined(_WIN32)

void ReadPathsAsTheSystemDoes() { std::setlocale(LC_CTYPE, ""); }

std::string NarrowText(const std::filesystem::path& path) {
  const std::wstring& wide = path.native();
  const auto letters = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(CP_ACP, 0, wide.data(), letters, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide.data(), letters, text.data(), size, nullptr, nullptr);
  return text;
}

#else

void ReadPathsAsTheSystemDoes() {}

std::string NarrowText(const std::filesystem::path& path) { return path.string(); }

#endif

}  // namespace kelto::host
