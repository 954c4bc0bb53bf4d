// Light and dark.
#pragma once

class QString;

namespace kelto::editor {

/// "light", "dark", or anything else for what the desktop says.
void UseTheme(const QString& name);

}  // namespace kelto::editor
