// kelto-edit: the editor.
#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QStyleFactory>
#include <QTranslator>

#include "editor/window/main_window.h"
#include "editor/window/palettes.h"
#include "host/base/error.h"
#include "host/effect/module_file.h"
#include "host/files/path_text.h"
#include "host/files/program_folder.h"

namespace {

/// A program that lies beside this one.
QString Beside(const char* name) {
  return QString::fromStdString(
      kelto::host::TextOf(kelto::host::ProgramFolder() / kelto::host::PathOf(name)));
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName("kelto-edit");
  QCoreApplication::setOrganizationName("kelto");
  QCoreApplication::setApplicationVersion(KELTO_VERSION);
  QGuiApplication::setDesktopFileName("kelto-edit");
  QGuiApplication::setWindowIcon(QIcon(":/kelto/kelto-edit.svg"));

  QTranslator ours, qts;
  if (ours.load(QLocale(), "kelto", "_", ":/kelto/translations")) {
    QCoreApplication::installTranslator(&ours);
  }
  if (qts.load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(&qts);
  }

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QCoreApplication::translate("main", "Choose what a film of a photograph shows, by eye."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(
      "file",
      QCoreApplication::translate("main", "Photographs, a folder of them, or a project to open"),
      "[FILE …]");
  const QCommandLineOption theme(
      "theme", QCoreApplication::translate("main", "Colours: light, dark or system"), "name",
      QSettings().value(kelto::editor::kThemeSetting, "system").toString());
  parser.addOption(theme);
  parser.process(application);
  kelto::editor::UseTheme(parser.value(theme));

  QString module;
  try {
    module = QString::fromStdString(kelto::host::FindModule(""));
  } catch (const kelto::host::Error& error) {
    fprintf(stderr, "kelto-edit: %s\n", error.what());
    return 1;
  }
  kelto::editor::MainWindow window({Beside("kelto"), Beside("kelto-preview"), module});
  window.show();
  const QStringList files = parser.positionalArguments();
  if (!files.isEmpty()) window.Open(files);
  return QApplication::exec();
}
