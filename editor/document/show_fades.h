// How the pictures of a show come and go.
#pragma once

#include "editor/document/document.h"
#include "editor/rules/fades_around.h"

namespace kelto::editor {

/// What the film shows beside the picture being edited; nothing for a film of one. Throws Error.
FadesAround FadesOf(const Document& document);

}  // namespace kelto::editor
