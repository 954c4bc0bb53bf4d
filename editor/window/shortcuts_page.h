// Every key of the editor on one page.
#pragma once

class QMainWindow;

namespace kelto::editor {

/// Shows the shortcuts of the window's menus and the keys of canvas, preview and timeline.
void ShowShortcuts(QMainWindow& window);

}  // namespace kelto::editor
