#include "editor/document/command_line.h"

#include "editor/document/show_changes.h"
#include "host/base/shell_word.h"

namespace kelto::editor {

const char* VerbOf(const Document& document) { return IsShow(document) ? "slideshow" : "render"; }

std::vector<std::string> RenderWords(const Document& document, const std::string& film) {
  return {"kelto", VerbOf(document), document.path, "-o", film};
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
