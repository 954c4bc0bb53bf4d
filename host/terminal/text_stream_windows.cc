#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>

#include "host/base/windows_text.h"
#include "host/terminal/text_stream.h"

namespace kelto::host {
namespace {

HANDLE HandleOf(std::FILE* stream) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the C library's own form of handles
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

}  // namespace

bool IsTerminal(std::FILE* stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool ObeysSequences(std::FILE* stream) {
  constexpr DWORD kSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0 && (mode & kSequences) != 0;
}

bool WriteText(std::FILE* stream, std::string_view text) {
  const auto wide = IsTerminal(stream) ? WideText(text) : std::nullopt;
  if (!wide) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
  }
  std::fflush(stream);
  // Older systems take some 30,000 units at a time.
  constexpr size_t kMost = 8192;
  for (size_t done = 0; done < wide->size();) {
    DWORD written = 0;
    const auto units = static_cast<DWORD>(std::min(wide->size() - done, kMost));
    if (!WriteConsoleW(HandleOf(stream), wide->data() + done, units, &written, nullptr) ||
        written == 0) {
      errno = EIO;
      return false;
    }
    done += written;
  }
  return true;
}

}  // namespace kelto::host
