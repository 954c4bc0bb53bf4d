// Windows and dialogs where there is less room than they would have.
#pragma once

#include <QWidget>

class QDialog;
class QScrollArea;

namespace kelto::editor {

/// `content` in an area that scrolls where it has no room; the area has no frame and no focus of
/// its own, and follows what has the focus within it.
QScrollArea* Scrolling(QWidget* content);

/// The wheel turns the boxes and sliders below `parent` only while they have the focus, so that
/// scrolling past them changes nothing.
void LeaveWheelToScrolling(QWidget& parent);

/// What a window with the size `wanted` may have on the screen of `parent`, its frame included.
QSize RoomOnScreen(const QWidget& parent, QSize wanted);

}  // namespace kelto::editor
