#include "host/commands/help_text.h"

#include <algorithm>
#include <sstream>

#if !defined(_WIN32)
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace kelto::host {
namespace {

/// Narrower ones get lines of this width, which leave room for a description.
constexpr size_t kLeastColumns = 50;

/// Where a line that goes on begins: behind the names of an option, else under its own first word.
size_t IndentOf(const std::string& line) {
  // Where the parser begins descriptions, also behind names that leave one blank.
  constexpr size_t kDescription = 30;
  if (line.starts_with("  ") && line.size() > kDescription && line[kDescription - 1] == ' ' &&
      line[kDescription] != ' ') {
    return kDescription;
  }
  const size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const size_t gap = line.find("  ", begin);
  if (gap == line.npos) return begin;
  return std::min(line.find_first_not_of(' ', gap), line.size());
}

}  // namespace

std::string Wrapped(const std::string& text, size_t columns) {
  columns = std::max(columns, kLeastColumns);
  std::string wrapped;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const size_t indent = std::min(IndentOf(line), columns / 2);
    while (line.size() > columns) {
      size_t end = line.rfind(' ', columns);
      // A word that is longer than the line stays whole.
      if (end == line.npos || end <= indent) end = line.find(' ', columns);
      if (end == line.npos) break;
      wrapped += line.substr(0, end) + "\n";
      line = std::string(indent, ' ') + line.substr(end + 1);
    }
    wrapped += line + "\n";
  }
  return wrapped;
}

size_t HelpColumns() {
#if !defined(_WIN32)
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
#endif
  return 80;
}

}  // namespace kelto::host
