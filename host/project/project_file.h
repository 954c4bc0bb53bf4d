// Project files: a plan as a JSON file that people write, editors complete and programs change.
// project.schema.json describes the fields.
#pragma once

#include <string>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// Whether `path` is named as project files are, ".json".
bool IsProjectName(const std::string& path);

/// Reads a project. What it does not name is as DefaultPlan has it; an empty parameter {} is left
/// to the effect. Paths come out relative to the current folder, as `path` is. Throws Error in one
/// line, "FILE: FIELD: what is wrong".
RenderPlan ReadProject(const std::string& path);

/// The text of the file of that name, no more than a project may have. Throws Error.
std::string ReadProjectText(const std::string& path);

/// The same of a file's text.
RenderPlan ParseProject(const std::string& text, const std::string& path);

/// The text of a project file at `path` that ReadProject makes the same plan of, numbers to the
/// last bit. Files beside or below the project are named relative to it, others by their absolute
/// path. A parameter with keys has no value beside them. Throws Error for a plan that no project
/// can hold.
std::string ProjectText(const std::string& path, const RenderPlan& plan);

/// Throws UsageError for a name under which a file would not be read as a project.
void CheckProjectName(const std::string& path);

/// Writes the project, at once or not at all. Throws UsageError for a name under which it would not
/// be read as a project, and Error.
void WriteProject(const std::string& path, const RenderPlan& plan);

}  // namespace kelto::host
