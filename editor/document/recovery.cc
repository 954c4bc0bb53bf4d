#include "editor/document/recovery.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "host/base/error.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/project/project_file.h"

namespace kelto::editor {
namespace {

using nlohmann::json;

/// The file's text; empty where there is none.
std::string TextThere(const std::string& path) {
  try {
    return host::ReadProjectText(path);
  } catch (const host::Error&) {
    return "";
  }
}

}  // namespace

std::string RecoveryPath(const std::string& path) {
  const std::filesystem::path project = host::PathOf(path);
  const std::string name = "." + host::TextOf(project.filename()) + ".kelto-unsaved";
  return host::TextOf(project.parent_path() / host::PathOf(name));
}

void KeepUnsaved(const Document& document, const std::string& savedText) {
  const std::string text = json{{"saved", savedText}, {"unsaved", document.text}}.dump();
  host::OutputFile file(RecoveryPath(document.path));
  file.Write(text.data(), text.size());
  file.Finish();
}

std::optional<Unsaved> FindUnsaved(const std::string& path) {
  const json kept = json::parse(TextThere(RecoveryPath(path)), nullptr, false);
  if (!kept.is_object() || !kept.contains("unsaved") || !kept["unsaved"].is_string()) return {};
  const std::string there = TextThere(path);
  Unsaved unsaved{{path, kept["unsaved"]}, kept.value("saved", "") != there};
  if (unsaved.document.text == there) return {};
  try {
    PlanOf(unsaved.document);
  } catch (const host::Error&) {
    return {};
  }
  return unsaved;
}

void ForgetUnsaved(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(host::PathOf(RecoveryPath(path)), ignored);
}

}  // namespace kelto::editor
