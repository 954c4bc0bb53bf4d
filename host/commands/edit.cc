#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/commands/commands.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/files/program_folder.h"
#include "host/files/start.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEditor = "kelto-edit";

/// The editor beside this program, else in PATH; empty when it is in neither. Folders of PATH that
/// depend on the current one are left out: a photograph may have brought a program along.
fs::path FindEditor() {
  std::vector<fs::path> folders = {ProgramFolder()};
  std::istringstream path(EnvironmentVariable("PATH"));
  for (std::string folder; std::getline(path, folder, ':');) {
    if (folder.starts_with('/')) folders.push_back(PathOf(folder));
  }
  for (const fs::path& folder : folders) {
    const fs::path editor = folder / kEditor;
    if (IsFile(editor) && access(editor.c_str(), X_OK) == 0) return editor;
  }
  return {};
}

void Run(const std::vector<std::string>& files) {
  const fs::path editor = FindEditor();
  if (editor.empty()) {
    throw Error("the editor, kelto-edit, is not installed; the package kelto-editor has it");
  }
  std::vector<std::string> words = {TextOf(editor)};
  if (!files.empty()) words.push_back("--");
  words.insert(words.end(), files.begin(), files.end());
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execv(editor.c_str(), arguments.data());
  throw Error(TextOf(editor) + ": cannot be started: " + std::strerror(errno));
}

}  // namespace

CLI::App* AddEdit(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("edit", "Choose views by eye: start the editor, kelto-edit");
  const auto files = std::make_shared<std::vector<std::string>>();
  command->add_option("FILE", *files, "Photographs, a folder of them, or a project to open")
      ->type_name("");
  command->final_callback([files] { Run(*files); });
  return command;
}

}  // namespace kelto::host
