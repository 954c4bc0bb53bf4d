#include "host/jobs/task_line.h"

#include "host/base/error.h"
#include "host/base/shell_word.h"

namespace kelto::host {

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
