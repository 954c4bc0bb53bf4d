#include "editor/widgets/canvas_accessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <map>

#include "editor/widgets/canvas.h"

namespace kelto::editor {
namespace {

/// One view of a canvas. The canvas's own interface owns it.
class ViewInterface : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  ViewInterface(Canvas& canvas, int view) : canvas_(canvas), view_(view) {}

  bool isValid() const override { return view_ < canvas_.ViewCount(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return canvas_.window()->windowHandle(); }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(&canvas_);
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text text) const override {
    if (text == QAccessible::Name && isValid()) return canvas_.ViewText(view_);
    return {};
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const QRect shown = canvas_.ViewPlace(view_);
    return {canvas_.mapToGlobal(shown.topLeft()), shown.size()};
  }
  QAccessible::Role role() const override { return QAccessible::ListItem; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.selectable = state.focusable = true;
    state.selected = canvas_.SelectedView() == view_;
    state.focused = state.selected && canvas_.hasFocus();
    state.invalid = !isValid();
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
  }
  QStringList actionNames() const override { return {setFocusAction()}; }
  void doAction(const QString& action) override {
    if (action != setFocusAction()) return;
    canvas_.setFocus();
    emit canvas_.ViewSelected(view_);
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  Canvas& canvas_;
  int view_;
};

class CanvasInterface : public QAccessibleWidget {
 public:
  explicit CanvasInterface(Canvas* canvas)
      : QAccessibleWidget(canvas, QAccessible::List), canvas_(*canvas) {}
  ~CanvasInterface() override {
    for (const auto& [view, id] : children_) QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return canvas_.ViewCount(); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= canvas_.ViewCount()) return nullptr;
    const auto found = children_.find(index);
    if (found != children_.end()) return QAccessible::accessibleInterface(found->second);
    auto* view = new ViewInterface(canvas_, index);
    children_[index] = QAccessible::registerAccessibleInterface(view);
    return view;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    for (const auto& [view, id] : children_) {
      if (QAccessible::accessibleInterface(id) == child) return view;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    for (int view = canvas_.ViewCount() - 1; view >= 0; --view) {
      if (child(view)->rect().contains(x, y)) return child(view);
    }
    return nullptr;
  }

 private:
  Canvas& canvas_;
  mutable std::map<int, QAccessible::Id> children_;
};

QAccessibleInterface* Make(const QString&, QObject* object) {
  auto* canvas = qobject_cast<Canvas*>(object);
  return canvas != nullptr ? new CanvasInterface(canvas) : nullptr;
}

}  // namespace

void DescribeCanvasViews() {
  static const bool installed = [] {
    QAccessible::installFactory(&Make);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace kelto::editor
