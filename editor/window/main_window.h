// The editor's window.
#pragma once

#include <QMainWindow>
#include <functional>

#include "editor/document/document.h"
#include "editor/preview/preview.h"
#include "editor/preview/sound_wave.h"
#include "editor/preview/thumbnails.h"
#include "editor/widgets/canvas.h"
#include "editor/widgets/preview_view.h"
#include "editor/widgets/strip.h"
#include "editor/widgets/timeline.h"
#include "editor/window/session.h"

class QLabel;
class QMenu;
class QSplitter;

namespace kelto::editor {

class FilmPanel;
class KeyPanel;
class RenderQueue;
class ViewPanel;

/// The programs that the editor starts and the effect's module, by their paths.
struct Programs {
  QString command;  ///< kelto
  QString preview;  ///< kelto-preview
  QString module;
};

/// What the user does to canvas, timeline and panels becomes changes of the session's document, and
/// every change is shown in all of them.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(const Programs& programs, QWidget* parent = nullptr);
  ~MainWindow() override;

  /// Opens a photo or a project, or several photos, a folder or a list as a slideshow; asks before
  /// that loses work. Whether it is open now.
  bool Open(const QStringList& paths);
  bool Open(const QString& path) { return Open(QStringList{path}); }
  Session& TheSession() { return session_; }
  Canvas& TheCanvas() { return *canvas_; }
  Timeline& TheTimeline() { return *timeline_; }
  Strip& TheStrip() { return *strip_; }
  Preview& ThePreview() { return preview_; }
  RenderQueue& TheQueue() { return *queue_; }
  int Selected() const { return selected_; }
  void Select(int view);
  /// The `kelto render` line of the film, as "Copy as Command" gives it.
  QString CommandLine() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // main_window.cc: what is shown
  void MakeWidgets();
  void Connect();
  /// Tab goes through the window as it is read.
  void OrderTabs();
  /// Gives the film beside the panels the room that it can use, until the user chooses.
  void FitSide();
  void ShowDocument();
  void ShowTime();
  void ShowTitle();
  void ShowFailure(const QString& reason);
  FoundSizes FindSizes(const std::vector<std::string>& photos);
  void Change(const QString& name, const Session::Change& change, Gesture gesture = {});
  void AskEasing(int stop, const QPoint& screen);
  void AskViewMenu(int view, const QPoint& screen);

  // key_actions.cc: the keys of a film that has no list of views
  void ConnectKeys();
  void ChangeKeys(size_t lane, const QString& name,
                  const std::function<void(std::vector<host::SettingKey>&)>& change,
                  Gesture gesture = {});

  // actions.cc: menus, toolbar and what their entries do
  void MakeActions();
  QAction* Add(QMenu* menu, const QString& text, const QKeySequence& keys,
               const std::function<void()>& work, bool needsDocument = true);
  void MakeMoveMenu(QMenu* menu);
  void MakeThemeMenu(QMenu* menu);
  void MakeViewMenu(QMenu* menu);
  void ShowStates();
  void SuggestMove();
  void CopyView();
  void PasteView();
  void FitView();

  // show_actions.cc: the pictures of a slideshow
  void MakePictureMenu(QMenu* menu);
  void ConnectStrip();
  void ShowPictures();
  void AskPhotos(int at);
  void MovePicture(int from, int to);
  void RemovePicture(int at);
  void AskTitle();
  void AskCaption();

  // main_window_files.cc: files and questions
  /// Of what is open, or of the user's pictures.
  QString LastFolder() const;
  void AskOpen();
  void AskOpenFolder();
  bool Save();
  bool AskSaveAs();
  /// Whether the document may be closed: saved, or to be dropped.
  bool AskKeep();
  void AskFile(const QString& title, const QString& filter,
               Document (*change)(const Document&, const std::string&));
  void OnFileChanged();
  void OfferRecovery();
  void NoteRecent(const QString& path);
  void FillRecent(QMenu* menu);
  void AskRender();

  Programs programs_;
  Session session_;
  Preview preview_;
  Canvas* canvas_ = nullptr;
  PreviewView* previewView_ = nullptr;
  Strip* strip_ = nullptr;
  Thumbnails thumbnails_;
  SoundWave wave_;
  Timeline* timeline_ = nullptr;
  ViewPanel* viewPanel_ = nullptr;
  KeyPanel* keyPanel_ = nullptr;
  FilmPanel* filmPanel_ = nullptr;
  RenderQueue* queue_ = nullptr;
  QDockWidget* queueDock_ = nullptr;
  QLabel* notice_ = nullptr;
  QSplitter* side_ = nullptr;  ///< between film and panels
  bool sideChosen_ = false;
  std::vector<QAction*> documentActions_;
  std::vector<QAction*> showActions_;  ///< of slideshows
  QAction *undo_ = nullptr, *redo_ = nullptr, *beyond_ = nullptr, *removeStop_ = nullptr,
          *keysToViews_ = nullptr;
  FilmWay way_;
  int selected_ = 0;
};

}  // namespace kelto::editor
