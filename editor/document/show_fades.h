// How the pictures of a show come and go.
#pragma once

#include "editor/document/document.h"
#include "editor/rules/fades_around.h"
#include "host/project/show_project.h"

namespace kelto::editor {

/// Frames of the fade behind a picture, or from a card into it, where the two are seen for so many:
/// the picture's own, or the usual one, as far as there is room.
int32_t FadeOf(const host::ShowPicture& picture, int32_t here, int32_t there);

/// What the film shows beside the picture being edited; nothing for a film of one. Throws Error.
FadesAround FadesOf(const Document& document);

}  // namespace kelto::editor
