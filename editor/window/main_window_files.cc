// Files of the window: opened, saved, made, and the questions in between.
#include <QtWidgets>

#include "editor/document/settings.h"
#include "editor/window/file_dialogs.h"
#include "editor/window/main_window.h"
#include "editor/window/render_dialog.h"
#include "editor/window/render_queue.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

constexpr int kMostRecent = 10;
constexpr const char* kRecent = "files/recent";

}  // namespace

bool MainWindow::Open(const QStringList& paths) {
  if (paths.isEmpty() || !AskKeep()) return false;
  notice_->hide();
  way_.clear();
  QStringList whole;
  for (const QString& path : paths) whole << QFileInfo(path).absoluteFilePath();
  if (!session_.Open(whole)) return false;
  selected_ = static_cast<int>(session_.Plan().views.size()) - 1;
  canvas_->FitPhoto();
  ShowDocument();
  if (whole.size() == 1) NoteRecent(whole.first());
  OfferRecovery();
  return true;
}

QString MainWindow::LastFolder() const {
  if (session_.IsOpen()) return QFileInfo(session_.Path()).absolutePath();
  return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

void MainWindow::AskOpen() {
  const QStringList paths = AskFilesToOpen(
      this,
      {tr("Open Photographs or a Project"), LastFolder(),
       tr("Photographs and projects (*.json *.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp "
          "*.tga *.heic *.heif);;All files (*)")});
  if (!paths.isEmpty()) Open(paths);
}

void MainWindow::AskOpenFolder() {
  const QString folder = AskFolder(this, {tr("Open a Folder of Photographs"), LastFolder(), {}});
  if (!folder.isEmpty()) Open(folder);
}

bool MainWindow::Save() {
  if (!session_.Steps().HasFile() && QFileInfo::exists(session_.Path())) return AskSaveAs();
  const bool saved = session_.Save();
  if (saved) NoteRecent(session_.Path());
  return saved;
}

bool MainWindow::AskSaveAs() {
  QString path =
      AskFileToSave(this, {tr("Save Project"), session_.Path(), tr("Projects (*.json)")}, true);
  if (path.isEmpty()) return false;
  if (!path.endsWith(".json", Qt::CaseInsensitive)) path += ".json";
  const bool saved = session_.SaveAs(path);
  if (saved) NoteRecent(path);
  return saved;
}

bool MainWindow::AskKeep() {
  // A photo that was only looked at is no work.
  if (!session_.Modified() || !session_.Steps().CanUndo()) return true;
  QMessageBox box(QMessageBox::Question, tr("Unsaved Changes"),
                  tr("Save the changes to %1?").arg(QFileInfo(session_.Path()).fileName()),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Save);
  const int answer = box.exec();
  if (answer == QMessageBox::Cancel) return false;
  if (answer == QMessageBox::Save) return Save();
  session_.Settle();
  session_.DropRecovery();
  return true;
}

void MainWindow::AskFile(const QString& title, const QString& filter,
                         Document (*change)(const Document&, const std::string&)) {
  const QString path = AskFileToOpen(this, {title, session_.Path(), filter});
  if (path.isEmpty()) return;
  Change(title, [&](const Document& d) { return change(d, path.toStdString()); });
}

void MainWindow::OnFileChanged() {
  const QString name = QFileInfo(session_.Path()).fileName();
  if (!session_.Modified()) {
    session_.Reload();
    statusBar()->showMessage(tr("%1 was changed by another program and read again").arg(name));
    return;
  }
  QMessageBox box(QMessageBox::Question, tr("Changed on Disk"),
                  tr("%1 was changed by another program. Take its changes in place of yours? "
                     "Undo brings yours back.")
                      .arg(name),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  if (box.exec() == QMessageBox::Yes) session_.Reload();
}

void MainWindow::OfferRecovery() {
  if (!session_.CanRecover()) return;
  QMessageBox box(QMessageBox::Question, tr("Unsaved Changes Found"),
                  tr("The editor stopped before %1 was saved. Take up the unsaved changes?")
                      .arg(QFileInfo(session_.Path()).fileName()),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Yes);
  if (box.exec() == QMessageBox::Yes) {
    session_.Recover();
  } else {
    session_.DropRecovery();
  }
}

void MainWindow::NoteRecent(const QString& path) {
  QSettings settings;
  QStringList recent = settings.value(kRecent).toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  while (recent.size() > kMostRecent) recent.removeLast();
  settings.setValue(kRecent, recent);
}

void MainWindow::FillRecent(QMenu* menu) {
  menu->clear();
  for (const QString& path : QSettings().value(kRecent).toStringList()) {
    menu->addAction(QFileInfo(path).fileName(), this, [this, path] { Open(path); })
        ->setToolTip(Qt::convertFromPlainText(path));
  }
  if (menu->isEmpty()) menu->addAction(tr("None yet"))->setEnabled(false);
}

void MainWindow::AskRender() {
  RenderDialog dialog(programs_.command, session_.Current(), this);
  if (dialog.exec() != QDialog::Accepted) return;
  try {
    queue_->Add(session_.Current(), dialog.Film(), dialog.Options());
    queueDock_->show();
  } catch (const host::Error& error) {
    ShowFailure(QString::fromStdString(error.what()));
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // What is being typed counts.
  for (auto* box : findChildren<QAbstractSpinBox*>()) box->interpretText();
  if (!AskKeep()) return event->ignore();
  if (queue_->Unfinished() > 0 &&
      QMessageBox::question(this, tr("Films Being Made"),
                            tr("Films are still being made. Cancel them and quit?")) !=
          QMessageBox::Yes) {
    return event->ignore();
  }
  session_.Settle();
  QSettings().setValue("window/geometry", saveGeometry());
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  QStringList paths;
  for (const QUrl& url : urls) {
    if (url.isLocalFile()) paths << url.toLocalFile();
  }
  if (!paths.isEmpty()) Open(paths);
}

}  // namespace kelto::editor
