// The pictures of a slideshow: the strip, and what menus do with it.
#include <QtWidgets>

#include "editor/document/settings.h"
#include "editor/document/show_changes.h"
#include "editor/window/file_dialogs.h"
#include "editor/window/main_window.h"
#include "host/base/error.h"

namespace kelto::editor {

void MainWindow::MakePictureMenu(QMenu* menu) {
  const auto selected = [this] { return session_.Picture(); };
  Add(menu, tr("&Add Photographs…"), QKeySequence("Ctrl+Shift+A"),
      [this, selected] { AskPhotos(selected() + 1); });
  const auto addForShows = [&](const QString& text, const QKeySequence& keys,
                               const std::function<void()>& work) {
    QAction* action = Add(menu, text, keys, work);
    documentActions_.pop_back();
    showActions_.push_back(action);
  };
  addForShows(tr("&Remove Picture"), {}, [this, selected] { RemovePicture(selected()); });
  menu->addSeparator();
  Add(menu, tr("&Caption…"), {}, [this] { AskCaption(); });
  addForShows(tr("&Title of the Show…"), {}, [this] { AskTitle(); });
  menu->addSeparator();
  addForShows(tr("&Previous Picture"), QKeySequence("Ctrl+PgUp"),
              [this, selected] { session_.SelectPicture(selected() - 1); });
  addForShows(tr("&Next Picture"), QKeySequence("Ctrl+PgDown"),
              [this, selected] { session_.SelectPicture(selected() + 1); });
  menu->addSeparator();
  addForShows(tr("Move to the &Left"), QKeySequence("Ctrl+Shift+PgUp"),
              [this, selected] { MovePicture(selected(), selected() - 1); });
  addForShows(tr("Move to the R&ight"), QKeySequence("Ctrl+Shift+PgDown"),
              [this, selected] { MovePicture(selected(), selected() + 1); });
}

void MainWindow::ConnectStrip() {
  connect(strip_, &Strip::Selected, &session_, &Session::SelectPicture);
  connect(strip_, &Strip::Moved, this, &MainWindow::MovePicture);
  connect(strip_, &Strip::Removed, this, &MainWindow::RemovePicture);
  connect(strip_, &Strip::AddAsked, this, &MainWindow::AskPhotos);
  connect(strip_, &Strip::SecondsChanged, this, [this](int at, double seconds) {
    Change(tr("Change Seconds"),
           [=](const Document& d) { return WithEach(d, static_cast<size_t>(at), seconds); });
  });
  connect(strip_, &Strip::FadeChanged, this, [this](int at, double seconds) {
    Change(tr("Change Fade"),
           [=](const Document& d) { return WithFade(d, static_cast<size_t>(at), seconds); });
  });
  connect(&thumbnails_, &Thumbnails::Made, this, &MainWindow::ShowPictures);
}

void MainWindow::ShowPictures() {
  const std::vector<PictureEntry>& pictures = session_.Pictures();
  const bool shown = session_.IsOpen() && !pictures.empty();
  if (shown == strip_->isHidden()) QTimer::singleShot(0, this, &MainWindow::FitSide);
  strip_->setVisible(shown);
  if (pictures.empty()) return;
  StripScene scene;
  scene.selected = session_.Picture();
  std::vector<std::string> photos;
  for (const PictureEntry& picture : pictures) {
    photos.push_back(picture.photo);
    const QString name = QFileInfo(QString::fromStdString(picture.photo)).fileName();
    scene.pictures.push_back({name, picture.seconds, picture.fade, thumbnails_.Of(picture.photo)});
  }
  strip_->SetScene(scene);
  thumbnails_.Want(photos);
}

void MainWindow::AskPhotos(int at) {
  const QStringList chosen = AskFilesToOpen(
      this,
      {tr("Add Photographs"), session_.Path(),
       tr("Photographs (*.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp *.tga *.heic *.heif);;"
          "All files (*)")});
  if (chosen.isEmpty()) return;
  std::vector<std::string> photos;
  for (const QString& path : chosen) photos.push_back(path.toStdString());
  try {
    // Ahead of the change, in which nothing else may happen.
    session_.LearnSizes(photos);
  } catch (const host::Error& error) {
    return ShowFailure(QString::fromStdString(error.what()));
  }
  Change(tr("Add Photographs"), [&](const Document& d) {
    return WithPhotosAdded(d, static_cast<size_t>(std::max(at, 0)), photos,
                           [this](const std::string& photo) { return session_.SizeOf(photo); });
  });
}

void MainWindow::MovePicture(int from, int to) {
  if (to < 0 || to >= static_cast<int>(session_.Pictures().size())) return;
  Change(tr("Move Picture"), [=](const Document& d) {
    return WithPictureMoved(d, static_cast<size_t>(from), static_cast<size_t>(to));
  });
}

void MainWindow::RemovePicture(int at) {
  Change(tr("Remove Picture"),
         [=](const Document& d) { return WithoutPicture(d, static_cast<size_t>(at)); });
}

void MainWindow::AskTitle() {
  bool chosen = false;
  const QString text = QInputDialog::getText(
      this, tr("Title of the Show"), tr("Words on a card before the first picture:"),
      QLineEdit::Normal, QString::fromStdString(ShowOf(session_.Current())->title), &chosen);
  if (!chosen) return;
  Change(tr("Change Title"), [=](const Document& d) { return WithTitle(d, text.toStdString()); });
}

void MainWindow::AskCaption() {
  bool chosen = false;
  const QString text = QInputDialog::getText(
      this, tr("Caption"),
      tr("Words over the picture. {description} and {date} stand for what the photo says of "
         "itself:"),
      QLineEdit::Normal, QString::fromStdString(session_.Plan().caption.text), &chosen);
  if (!chosen) return;
  Change(tr("Change Caption"),
         [=](const Document& d) { return WithCaption(d, text.toStdString()); });
}

}  // namespace kelto::editor
