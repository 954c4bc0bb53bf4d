#include "host/terminal/terminal.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/terminal/events.h"

#include "host/terminal/library_text.h"
#include "host/terminal/text_stream.h"

#if !defined(_WIN32)
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace kelto::host {
namespace {

/// The letters of the progress line that stands on the terminal.
size_t shown = 0;
/// The rows of the terminal that a picture takes above it, and what removes it.
int pictureRows = 0;
std::string pictureEnd;
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
    WriteText(ErrorStream(), "kelto: " + ShownText(line) + "\n");
  }
}

}  // namespace

void SetReporting(Reporting wanted) { reporting = wanted; }
Reporting CurrentReporting() { return reporting; }

void DrawProgress(const std::string& line) {
  // Back to the line's start, and erase what a longer line leaves; with blanks where the terminal
  // knows no other way.
  std::string text = "\r";
  text += line;
  if (ObeysSequences(ErrorStream())) {
    text += "\033[K";
  } else if (line.size() < shown) {
    text.append(shown - line.size(), ' ').append("\r").append(line);
  }
  WriteText(ErrorStream(), text);
  shown = line.size();
}

void DrawPicture(const std::string& text, int rows, const std::string& remove) {
  if (pictureRows != rows) ClearProgress();
  std::string drawn;
  // Lines to draw over, for which the screen rolls where it has to.
  if (pictureRows == 0) drawn.append(static_cast<size_t>(rows), '\n');
  drawn += "\r\0337\033[" + std::to_string(rows) + "A" + text + "\0338";
  pictureRows = rows;
  pictureEnd = remove;
  WriteText(ErrorStream(), drawn);
}

void ClearProgress() {
  if (pictureRows > 0) {
    WriteText(ErrorStream(), "\r\033[K\033[" + std::to_string(std::exchange(pictureRows, 0)) + "A" +
                                 pictureEnd + "\033[J");
    shown = 0;
  }
  if (shown > 0) DrawProgress("");
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

bool IsStrict() { return strict; }

void Warn(const std::string& text) {
  if (strict) throw Error(text);
  PrintMessage(text);
}

void SetMessageSink(std::function<void(const std::string&)> sink) { messageSink = std::move(sink); }

bool StandardOutputIsTerminal() { return IsTerminal(stdout); }

bool StandardErrorDraws() {
  const char* kind = std::getenv("TERM");
  if (kind != nullptr && std::string_view(kind) == "dumb") return false;
  return IsTerminal(ErrorStream());
}

int StandardErrorColumns() {
#if !defined(_WIN32)
  winsize size{};
  if (ioctl(fileno(ErrorStream()), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
#endif
  return 80;
}

}  // namespace kelto::host
