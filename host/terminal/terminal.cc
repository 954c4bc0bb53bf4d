#include "host/terminal/terminal.h"

#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

namespace kelto::host {
namespace {

/// Whether a progress line stands on the terminal.
bool shown = false;

}  // namespace

void ShowProgress(int32_t done, int32_t total) {
  static const bool terminal = isatty(fileno(stderr)) != 0;
  if (!terminal) return;
  std::fprintf(stderr, "\rframe %d of %d (%d %%)", done, total,
               static_cast<int>(int64_t{100} * done / total));
  shown = true;
}

void ClearProgress() {
  if (!shown) return;
  // Back to the line's start, and erase to its end.
  std::fputs("\r\033[K", stderr);
  shown = false;
}

void PrintMessage(const std::string& text) {
  ClearProgress();
  std::string line = text;
  while (!line.empty() && line.back() == '\n') line.pop_back();
  std::fprintf(stderr, "kelto: %s\n", line.c_str());
}

bool StandardOutputIsTerminal() { return isatty(fileno(stdout)) != 0; }

}  // namespace kelto::host
