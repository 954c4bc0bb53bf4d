#include "host/jobs/task_line.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "host/base/error.h"

namespace kelto::host {

std::string ShellQuoted(const std::string& word) {
  const bool plain = !word.empty() && std::all_of(word.begin(), word.end(), [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) != 0 || std::strchr("%+,-./:=@_", c) != nullptr);
  });
  if (plain) return word;
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

std::string TaskLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (word.find('\n') != word.npos) {
      throw Error(word.substr(0, word.find('\n')) +
                  "...: the name goes over more than one line, which no task list can hold");
    }
    if (!line.empty()) line += ' ';
    line += ShellQuoted(word);
  }
  return line;
}

}  // namespace kelto::host
