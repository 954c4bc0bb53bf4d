#include "editor/document/command_line.h"

#include "host/base/shell_word.h"

namespace kelto::editor {

std::vector<std::string> RenderWords(const std::string& project, const std::string& film) {
  return {"kelto", "render", project, "-o", film};
}

std::string ShellLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += host::ShellQuoted(word);
  }
  return line;
}

}  // namespace kelto::editor
