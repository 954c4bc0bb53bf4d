#include "host/base/windows_text.h"

#include <windows.h>

namespace kelto::host {

std::string FromCodePage(const std::string& text) {
  const auto bytes = static_cast<int>(text.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  std::wstring wide(static_cast<size_t>(units), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), units);
  return Utf8Text(wide);
}

}  // namespace kelto::host
