// The question for a colour.
#pragma once

#include <QColor>
#include <QDialog>

class QColorDialog;

namespace kelto::editor {

/// Qt's dialog in one that scrolls, for screens which are less high: by itself it has one size, and
/// its buttons would lie below the screen.
class ScrolledColourDialog : public QDialog {
  Q_OBJECT

 public:
  /// Begins with the colour `now`, in `room` at the most.
  ScrolledColourDialog(const QString& title, const QColor& now, QSize room,
                       QWidget* parent = nullptr);
  QColor Chosen() const;

 private:
  QColorDialog* colours_;
};

/// Begins with the colour `now`. Not valid when none was chosen.
QColor AskColour(QWidget* parent, const QString& title, const QColor& now);

}  // namespace kelto::editor
