// The document as a command.
#pragma once

#include <string>
#include <vector>

#include "editor/document/document.h"

namespace kelto::editor {

/// The command that makes its film: "slideshow" for a show, else "render".
const char* VerbOf(const Document& document);

/// The words of `kelto render PROJECT -o FILM`, or of `kelto slideshow` where it is a show.
std::vector<std::string> RenderWords(const Document& document, const std::string& film);

/// A line for a shell, whose quoting keeps every word as it is.
std::string ShellLine(const std::vector<std::string>& words);

}  // namespace kelto::editor
