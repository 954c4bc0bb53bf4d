#include "editor/window/palettes.h"

#include <QApplication>
#include <QPalette>
#include <QString>
#include <QStyle>
#include <QStyleFactory>

namespace kelto::editor {
namespace {

QPalette PaletteOf(QColor window, QColor base, QColor button, QColor text, QColor faint,
                   QColor accent, QColor notice) {
  QPalette palette(button, window);
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::Button, button);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::ToolTipBase, notice);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, accent);
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faint);
  }
  return palette;
}

}  // namespace

void UseTheme(const QString& name) {
  static const QString desktops = QApplication::style()->name();
  if (name != "light" && name != "dark") {
    // An empty palette is the desktop's.
    if (QApplication::style()->name() != desktops) {
      QApplication::setStyle(QStyleFactory::create(desktops));
    }
    QApplication::setPalette(QPalette());
    return;
  }
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setPalette(
      name == "dark"
          ? PaletteOf(0x26282b, 0x1d1f21, 0x34373b, 0xe6e6e6, 0x8a8d91, 0x3d7eda, 0x4b3f1c)
          : PaletteOf(0xf4f4f5, 0xffffff, 0xfafafa, 0x202124, 0x8a8d91, 0x2f6fd0, 0xfff3cd));
}

}  // namespace kelto::editor
