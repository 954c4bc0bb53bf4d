// What is not saved yet, kept in case that the program or the machine stops.
#pragma once

#include <optional>
#include <string>

#include "editor/document/document.h"

namespace kelto::editor {

/// The file that keeps the unsaved state of the project at `path`: ".beach.json.kelto-unsaved"
/// beside it.
std::string RecoveryPath(const std::string& path);

/// Writes `document` there, at once or not at all. `savedText` is what the project's file has.
/// Throws Error.
void KeepUnsaved(const Document& document, const std::string& savedText);

struct Unsaved {
  Document document;
  bool fileChanged = false;  ///< whether the project's file is another than when it was kept
};

/// What was kept of the project at `path`; none where nothing was, where it is what the file has,
/// and where it cannot be read as a project.
std::optional<Unsaved> FindUnsaved(const std::string& path);

/// Removes what was kept.
void ForgetUnsaved(const std::string& path);

}  // namespace kelto::editor
