// Light and dark.
#pragma once

class QString;

namespace kelto::editor {

/// Where the user's choice is kept among the program's settings.
inline constexpr const char* kThemeSetting = "window/theme";

/// "light", "dark", or anything else for what the desktop says. May be called again.
void UseTheme(const QString& name);

}  // namespace kelto::editor
