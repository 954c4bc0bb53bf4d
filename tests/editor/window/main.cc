// Windows that nobody sees, settings that nobody else reads.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QStandardPaths::setTestModeEnabled(true);
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("kelto-tests");
  QCoreApplication::setApplicationName("editor-" +
                                       QString::number(QCoreApplication::applicationPid()));
  const int result = RUN_ALL_TESTS();
  QSettings().clear();
  return result;
}
