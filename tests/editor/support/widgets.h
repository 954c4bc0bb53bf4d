// What tests of widgets need: a program with windows that nobody sees, and real events.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QPaintEvent>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <cstdlib>

namespace kelto::editor {

/// Counts the events of a type that a widget gets.
class EventCount : public QObject {
 public:
  EventCount(QObject& watched, QEvent::Type type) : type_(type) {
    watched.installEventFilter(this);
  }
  int Count() const { return count_; }
  /// Of the last one, where it was to paint.
  QRect Painted() const { return painted_; }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != type_) return false;
    ++count_;
    if (type_ == QEvent::Paint)
      painted_ = static_cast<QPaintEvent*>(event)->region().boundingRect();
    return false;
  }

 private:
  QEvent::Type type_;
  int count_ = 0;
  QRect painted_;
};

/// The one application of a test program.
class WidgetTest : public testing::Test {
 protected:
  WidgetTest() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (QApplication::instance() == nullptr) new QApplication(count, arguments);
  }

  /// Shows `widget` in this size, with the focus.
  static void Show(QWidget& widget, QSize size) {
    widget.resize(size);
    widget.show();
    widget.setFocus();
    QCoreApplication::processEvents();
  }

  static void Turn(QWidget& widget, QPoint at, int turns,
                   Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, turns * 120}, Qt::NoButton, keys,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
  }

  /// Presses at `from`, moves by way of the middle, and leaves the button held at `to`.
  static void Drag(QWidget& widget, QPoint from, QPoint to,
                   Qt::KeyboardModifiers keys = Qt::NoModifier,
                   Qt::MouseButton button = Qt::LeftButton) {
    QTest::mousePress(&widget, button, keys, from);
    for (const QPoint at : {(from + to) / 2, to}) {
      QMouseEvent move(QEvent::MouseMove, at, widget.mapToGlobal(at), Qt::NoButton, button, keys);
      QCoreApplication::sendEvent(&widget, &move);
    }
  }
  static void Release(QWidget& widget, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseRelease(&widget, button, Qt::NoModifier, at);
  }
};

}  // namespace kelto::editor
