#include "host/terminal/terminal.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/terminal/events.h"

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace kelto::host {
namespace {

/// Whether a progress line stands on the terminal.
bool shown = false;
Reporting reporting = Reporting::kUsual;
bool strict = false;
std::function<void(const std::string&)> messageSink;

void PrintLine(const char* event, const std::string& text) {
  ClearProgress();
  std::string line = text;
  while (!line.empty() && line.back() == '\n') line.pop_back();
  if (reporting == Reporting::kJson) {
    PrintEvent(event, {{"text", line}});
  } else {
    std::fprintf(stderr, "kelto: %s\n", ShownText(line).c_str());
  }
}

}  // namespace

void SetReporting(Reporting wanted) { reporting = wanted; }
Reporting CurrentReporting() { return reporting; }

void DrawProgress(const std::string& line) {
  // Back to the line's start, and erase what a longer line leaves.
  std::fprintf(stderr, "\r%s\033[K", line.c_str());
  shown = true;
}

void ClearProgress() {
  if (!shown) return;
  std::fputs("\r\033[K", stderr);
  shown = false;
}

void PrintMessage(const std::string& text) {
  if (messageSink) {
    messageSink(text);
  } else if (reporting != Reporting::kQuiet) {
    PrintLine("message", text);
  }
}

void PrintFailure(const std::string& text) { PrintLine("error", text); }

void SetStrict(bool wanted) { strict = wanted; }

void Warn(const std::string& text) {
  if (strict) throw Error(text);
  PrintMessage(text);
}

void SetMessageSink(std::function<void(const std::string&)> sink) { messageSink = std::move(sink); }

bool StandardOutputIsTerminal() { return isatty(fileno(stdout)) != 0; }

bool StandardErrorDraws() {
  const char* kind = std::getenv("TERM");
  if (kind != nullptr && std::string_view(kind) == "dumb") return false;
  return isatty(fileno(stderr)) != 0;
}

int StandardErrorColumns() {
#if !defined(_WIN32)
  winsize size{};
  if (ioctl(fileno(stderr), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
#endif
  return 80;
}

}  // namespace kelto::host
