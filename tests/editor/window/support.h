// A folder with a photo, and waiting for what comes from other processes.
#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <functional>

namespace kelto::editor {

/// A folder with photo.png, 1600 x 1200 of noise-free colours, with a white mark of 40 x 40 pixels
/// whose middle is at (1200, 800).
class PhotoFolder {
 public:
  PhotoFolder() {
    QImage photo(1600, 1200, QImage::Format_RGB32);
    QLinearGradient sky(0, 0, 1600, 1200);
    sky.setColorAt(0, QColor(20, 40, 90));
    sky.setColorAt(1, QColor(160, 90, 40));
    QPainter painter(&photo);
    painter.fillRect(photo.rect(), sky);
    painter.fillRect(1180, 780, 40, 40, Qt::white);
    painter.end();
    photo.save(Photo());
  }
  QString Photo() const { return folder_.filePath("photo.png"); }
  QString Project() const { return folder_.filePath("photo.json"); }
  QString File(const QString& name) const { return folder_.filePath(name); }

 private:
  QTemporaryDir folder_;
};

/// The widget below `window` that screen readers call so; a failed test where there is none.
template <typename Widget>
Widget* WidgetNamed(const QWidget& window, const QString& name) {
  for (Widget* widget : window.findChildren<Widget*>()) {
    if (widget->accessibleName() == name) return widget;
  }
  ADD_FAILURE() << name.toStdString() << " is not there";
  return nullptr;
}

/// Runs the event loop until `done`, for a minute at the most. Whether it was.
inline bool WaitFor(const std::function<bool()>& done) { return QTest::qWaitFor(done, 60000); }

}  // namespace kelto::editor
