// The drawing process at work.
#pragma once

#include <string>

namespace kelto::editor {

/// Answers the requests that come from file descriptor `in` through `out` until `in` ends. Enters
/// the sandbox with the first plan, or with the photos whose sizes are asked for, so that what
/// follows must be of the same files; others are refused. Throws Error where nothing more
/// can be answered.
void ServeDrawing(const std::string& module, int in, int out);

}  // namespace kelto::editor
