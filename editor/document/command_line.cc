#include "editor/document/command_line.h"

namespace kelto::editor {
namespace {

bool IsPlain(const std::string& word) {
  const std::string plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./,:@+=%";
  return !word.empty() && word.find_first_not_of(plain) == word.npos;
}

std::string Quoted(const std::string& word) {
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

}  // namespace

std::vector<std::string> RenderWords(const std::string& project, const std::string& film) {
  return {"kelto", "render", project, "-o", film};
}

std::string ShellLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += IsPlain(word) ? word : Quoted(word);
  }
  return line;
}

}  // namespace kelto::editor
