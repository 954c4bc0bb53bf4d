#include "editor/preview/preview_program.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace kelto::editor {

QString FindPreviewProgram() {
  const QString folder = QCoreApplication::applicationDirPath();
  for (const char* place : {"/kelto-preview", "/../lib/kelto/kelto-preview"}) {
    const QFileInfo file(folder + place);
    if (file.isExecutable()) return file.absoluteFilePath();
  }
  return {};
}

}  // namespace kelto::editor
