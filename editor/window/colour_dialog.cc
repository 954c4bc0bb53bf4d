#include "editor/window/colour_dialog.h"

#include <QtWidgets>

#include "editor/window/small_screens.h"

namespace kelto::editor {

ScrolledColourDialog::ScrolledColourDialog(const QString& title, const QColor& now, QSize room,
                                           QWidget* parent)
    : QDialog(parent), colours_(new QColorDialog(now)) {
  setWindowTitle(title);
  colours_->setWindowFlags(Qt::Widget);
  colours_->setOptions(QColorDialog::DontUseNativeDialog | QColorDialog::NoButtons);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 8);
  QScrollArea* area = Scrolling(colours_);
  column->addWidget(area);
  column->addWidget(buttons);
  buttons->setContentsMargins(8, 0, 8, 0);
  buttons->button(QDialogButtonBox::Ok)->setDefault(true);
  buttons->button(QDialogButtonBox::Ok)->setFocus();
  colours_->show();
  const QSize all = colours_->sizeHint() +
                    QSize(area->verticalScrollBar()->sizeHint().width(),
                          buttons->sizeHint().height() + 8 + std::max(0, column->spacing()));
  resize(all.boundedTo(room));
}

QColor ScrolledColourDialog::Chosen() const { return colours_->currentColor(); }

QColor AskColour(QWidget* parent, const QString& title, const QColor& now) {
  const QSize wanted = QColorDialog().sizeHint();
  const QSize room = RoomOnScreen(*parent, QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
  if (wanted.boundedTo(room) == wanted) return QColorDialog::getColor(now, parent, title);
  ScrolledColourDialog dialog(title, now, room, parent);
  return dialog.exec() == QDialog::Accepted ? dialog.Chosen() : QColor();
}

}  // namespace kelto::editor
