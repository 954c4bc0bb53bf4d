#include "editor/window/small_screens.h"

#include <QtWidgets>

namespace kelto::editor {
namespace {

/// What a window manager draws around a window.
constexpr QSize kFrame(16, 48);

class WheelFilter : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
    event->ignore();  // it goes on to what scrolls
    return true;
  }
};

}  // namespace

QScrollArea* Scrolling(QWidget* content) {
  auto* area = new QScrollArea;
  area->setWidget(content);
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);
  return area;
}

void LeaveWheelToScrolling(QWidget& parent) {
  auto* filter = new WheelFilter(&parent);
  for (QWidget* widget : parent.findChildren<QWidget*>()) {
    const bool turns = qobject_cast<QComboBox*>(widget) != nullptr ||
                       qobject_cast<QAbstractSpinBox*>(widget) != nullptr ||
                       qobject_cast<QAbstractSlider*>(widget) != nullptr;
    if (!turns || widget->focusPolicy() != Qt::WheelFocus) continue;
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(filter);
  }
}

QSize RoomOnScreen(const QWidget& parent, QSize wanted) {
  return wanted.boundedTo(parent.screen()->availableSize() - kFrame);
}

}  // namespace kelto::editor
