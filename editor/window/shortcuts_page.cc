#include "editor/window/shortcuts_page.h"

#include <QtWidgets>

#include "editor/window/small_screens.h"

namespace kelto::editor {
namespace {

QString Row(const QString& keys, const QString& what) {
  return "<tr><td style='padding-right:24px'><b>" + keys.toHtmlEscaped() + "</b></td><td>" +
         what.toHtmlEscaped() + "</td></tr>";
}

QString Head(const QString& text) {
  return "<tr><td colspan='2' style='padding-top:14px'><h3>" + text.toHtmlEscaped() +
         "</h3></td></tr>";
}

QString Text(const char* text) { return QCoreApplication::translate("Shortcuts", text); }

struct Key {
  const char* keys;
  const char* what;
};

constexpr Key kCanvas[] = {
    {QT_TRANSLATE_NOOP("Shortcuts", "Drag inside a view"),
     QT_TRANSLATE_NOOP("Shortcuts", "Move it; Shift locks an axis, Ctrl suspends snapping")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Drag a corner"),
     QT_TRANSLATE_NOOP("Shortcuts", "Resize about the opposite corner; Alt: about the middle")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Wheel over a view"),
     QT_TRANSLATE_NOOP("Shortcuts", "Zoom the view")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Ctrl+Wheel"),
     QT_TRANSLATE_NOOP("Shortcuts", "Zoom the canvas to the pointer")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Space+Drag, middle button"),
     QT_TRANSLATE_NOOP("Shortcuts", "Pan the canvas")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Double click"),
     QT_TRANSLATE_NOOP("Shortcuts", "Add a stop there")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Arrow keys"),
     QT_TRANSLATE_NOOP("Shortcuts", "Move the view by a pixel of the photo; Shift: by ten")},
    {QT_TRANSLATE_NOOP("Shortcuts", "+, −"), QT_TRANSLATE_NOOP("Shortcuts", "Zoom the view")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Tab, Shift+Tab"),
     QT_TRANSLATE_NOOP("Shortcuts", "Next and previous view")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Delete"), QT_TRANSLATE_NOOP("Shortcuts", "Remove the view")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Escape"),
     QT_TRANSLATE_NOOP("Shortcuts", "End a drag as it began")},
    {QT_TRANSLATE_NOOP("Shortcuts", "0, 1"),
     QT_TRANSLATE_NOOP("Shortcuts", "Fit the photo; show its pixels as they are")},
};

constexpr Key kTimeline[] = {
    {QT_TRANSLATE_NOOP("Shortcuts", "Left, Right"),
     QT_TRANSLATE_NOOP("Shortcuts", "A frame back or on; Shift: a second")},
    {QT_TRANSLATE_NOOP("Shortcuts", "+, −"),
     QT_TRANSLATE_NOOP("Shortcuts", "Look at the view longer or shorter; Ctrl: its way")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Ctrl+Left, Ctrl+Right"),
     QT_TRANSLATE_NOOP("Shortcuts", "Previous and next key")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Delete"),
     QT_TRANSLATE_NOOP("Shortcuts", "Remove the selected keys")},
};

constexpr Key kStrip[] = {
    {QT_TRANSLATE_NOOP("Shortcuts", "Drag between others, Alt+Left, Alt+Right"),
     QT_TRANSLATE_NOOP("Shortcuts", "Move the picture")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Left, Right"),
     QT_TRANSLATE_NOOP("Shortcuts", "Previous and next picture")},
    {QT_TRANSLATE_NOOP("Shortcuts", "Insert, Delete"),
     QT_TRANSLATE_NOOP("Shortcuts", "Add pictures; remove the picture")},
};

}  // namespace

void ShowShortcuts(QMainWindow& window) {
  QString page = "<table>";
  for (const QAction* top : window.menuBar()->actions()) {
    QString rows;
    for (const QAction* action : top->menu()->actions()) {
      const QString keys = action->shortcut().toString(QKeySequence::NativeText);
      if (!keys.isEmpty()) rows += Row(keys, action->text().remove('&'));
    }
    if (!rows.isEmpty()) page += Head(top->text().remove('&')) + rows;
  }
  page += Head(Text(QT_TRANSLATE_NOOP("Shortcuts", "On the photo")));
  for (const Key& key : kCanvas) page += Row(Text(key.keys), Text(key.what));
  page += Head(Text(QT_TRANSLATE_NOOP("Shortcuts", "On the timeline")));
  for (const Key& key : kTimeline) page += Row(Text(key.keys), Text(key.what));
  page += Head(Text(QT_TRANSLATE_NOOP("Shortcuts", "On the pictures of a slideshow")));
  for (const Key& key : kStrip) page += Row(Text(key.keys), Text(key.what));
  page += "</table>";

  auto* dialog = new QDialog(&window);
  dialog->setObjectName("shortcuts");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(Text(QT_TRANSLATE_NOOP("Shortcuts", "Keyboard and Mouse")));
  auto* text = new QTextBrowser;
  text->setFrameShape(QFrame::NoFrame);
  text->setHtml(page);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
  auto* column = new QVBoxLayout(dialog);
  column->addWidget(text);
  column->addWidget(buttons);
  dialog->resize(RoomOnScreen(window, {620, 600}));
  dialog->show();
}

}  // namespace kelto::editor
