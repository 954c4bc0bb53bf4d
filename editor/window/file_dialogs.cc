#include "editor/window/file_dialogs.h"

#include <QFileDialog>
#include <QFileInfo>

#include "editor/window/small_screens.h"

namespace kelto::editor {
namespace {

QStringList Ask(QFileDialog& dialog, const FileQuestion& question) {
  const QFileInfo start(question.start);
  if (start.isDir()) {
    dialog.setDirectory(start.absoluteFilePath());
  } else {
    dialog.setDirectory(start.absolutePath());
    if (dialog.acceptMode() == QFileDialog::AcceptSave) dialog.selectFile(start.fileName());
  }
  // Qt's own dialog would be higher than a small screen, with its buttons below.
  dialog.resize(RoomOnScreen(dialog, dialog.sizeHint()));
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

}  // namespace

QString AskFileToOpen(QWidget* parent, const FileQuestion& question) {
  QFileDialog dialog(parent, question.title, {}, question.filter);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return Ask(dialog, question).value(0);
}

QStringList AskFilesToOpen(QWidget* parent, const FileQuestion& question) {
  QFileDialog dialog(parent, question.title, {}, question.filter);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  return Ask(dialog, question);
}

QString AskFolder(QWidget* parent, const FileQuestion& question) {
  QFileDialog dialog(parent, question.title);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  return Ask(dialog, question).value(0);
}

QString AskFileToSave(QWidget* parent, const FileQuestion& question, bool replaces) {
  QFileDialog dialog(parent, question.title, {}, question.filter);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite, !replaces);
  return Ask(dialog, question).value(0);
}

}  // namespace kelto::editor
