// Questions for names of files.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace kelto::editor {

/// What a file dialog asks. Dialogs keep to the screen.
struct FileQuestion {
  QString title;
  QString start;   ///< a folder or a file
  QString filter;  ///< as QFileDialog has it; empty for all files
};

/// Empty when nothing was chosen, as with the others.
QString AskFileToOpen(QWidget* parent, const FileQuestion& question);
QStringList AskFilesToOpen(QWidget* parent, const FileQuestion& question);
QString AskFolder(QWidget* parent, const FileQuestion& question);
/// `replaces`: asks before a file that exists is chosen.
QString AskFileToSave(QWidget* parent, const FileQuestion& question, bool replaces);

}  // namespace kelto::editor
