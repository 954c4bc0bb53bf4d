// Where the program is that draws for the editor.
#pragma once

#include <QString>

namespace kelto::editor {

/// kelto-preview beside this program, else where it is installed; empty where it is in neither.
QString FindPreviewProgram();

}  // namespace kelto::editor
