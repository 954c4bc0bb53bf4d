// What the editor edits: the text of a project.
//
// The text is the document; what it means is read from it by the same libraries that the command
// uses. A change is a function of values, from one document to the next, and writes only what it
// changes: the rest of the text stays as whoever wrote it laid it out.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "framing/pixel_size.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

struct Document {
  std::string path;  ///< of the project; where it would lie while it has not been saved yet
  std::string text;
  size_t picture = 0;  ///< of a show, the one being edited
  bool operator==(const Document&) const = default;
};

/// A project of a photo of this size that lies in `path` once it is saved: a gentle move in.
Document NewDocument(const std::string& photo, const PixelSize& size, const std::string& path);

/// The name of a project beside its photo: "beach.json" for "beach.jpg".
std::string ProjectBeside(const std::string& photo);

/// Reads a project. Throws Error, "FILE: FIELD: what is wrong".
Document ReadDocument(const std::string& path);

/// Writes the document to its path, at once or not at all. Throws Error.
void WriteDocument(const Document& document);

/// What the document means; of a show, what the picture being edited shows. Throws Error as
/// ReadDocument does.
host::RenderPlan PlanOf(const Document& document);

/// The size of a plan's photo as the plan turns it; `photo` as its file has it, upright.
PixelSize TurnedSize(const host::RenderPlan& plan, const PixelSize& photo);

/// The document after `change` of its JSON; of a show, of the JSON that the picture being edited
/// would have as a film of its own (see show_changes.h for the others). Throws Error where the
/// result would be no project, so that no change can make a document that could not be read again.
Document Changed(const Document& document,
                 const std::function<void(nlohmann::ordered_json&)>& change);

/// The document as a project at another path, whose relative paths name the same files.
Document MovedTo(const Document& document, const std::string& path);

}  // namespace kelto::editor
