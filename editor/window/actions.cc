// The window's menus and toolbar, and what their entries do.
#include <QtWidgets>
#include <algorithm>

#include "editor/document/command_line.h"
#include "editor/document/settings.h"
#include "editor/document/tour_changes.h"
#include "editor/window/main_window.h"
#include "editor/window/move_finder.h"
#include "editor/window/palettes.h"
#include "editor/window/render_queue.h"
#include "editor/window/scenes.h"
#include "editor/window/shortcuts_page.h"
#include "host/base/error.h"
#include "host/moves/presets.h"
#include "host/options/given_view.h"
#include "host/track/photo_views.h"

namespace kelto::editor {
namespace {

/// Moves by the names that `--move` takes, with what the user reads.
struct NamedMove {
  const char* name;
  const char* text;
};
constexpr NamedMove kMoves[] = {
    {"in", QT_TRANSLATE_NOOP("Moves", "Zoom in")},
    {"out", QT_TRANSLATE_NOOP("Moves", "Zoom out")},
    {"left", QT_TRANSLATE_NOOP("Moves", "Pan left")},
    {"right", QT_TRANSLATE_NOOP("Moves", "Pan right")},
    {"up", QT_TRANSLATE_NOOP("Moves", "Pan up")},
    {"down", QT_TRANSLATE_NOOP("Moves", "Pan down")},
    {"up-left", QT_TRANSLATE_NOOP("Moves", "Pan up and left")},
    {"up-right", QT_TRANSLATE_NOOP("Moves", "Pan up and right")},
    {"down-left", QT_TRANSLATE_NOOP("Moves", "Pan down and left")},
    {"down-right", QT_TRANSLATE_NOOP("Moves", "Pan down and right")},
    {"hold", QT_TRANSLATE_NOOP("Moves", "Stand still")},
};

struct EasingWord {
  const char* out;
  const char* in;
  const char* text;
};
constexpr EasingWord kEasings[] = {
    {"", "", QT_TRANSLATE_NOOP("Easing", "Usual")},
    {"ease", "ease", QT_TRANSLATE_NOOP("Easing", "Gently away, gently there")},
    {"ease", "linear", QT_TRANSLATE_NOOP("Easing", "Gently away")},
    {"linear", "ease", QT_TRANSLATE_NOOP("Easing", "Gently there")},
    {"linear", "linear", QT_TRANSLATE_NOOP("Easing", "Evenly")},
    {"constant", "constant", QT_TRANSLATE_NOOP("Easing", "At one speed through all")},
    {"hold", "linear", QT_TRANSLATE_NOOP("Easing", "Jump")},
};

}  // namespace

QAction* MainWindow::Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                         const std::function<void()>& work, bool needsDocument) {
  QAction* action = menu->addAction(text, this, [this, work] {
    try {
      work();
    } catch (const host::Error& error) {
      // Such as a view beside another photo: left to Qt, it would end the program.
      ShowFailure(QString::fromStdString(error.what()));
    }
  });
  action->setShortcut(keys);
  if (needsDocument) documentActions_.push_back(action);
  return action;
}

void MainWindow::MakeActions() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  QAction* open = Add(
      file, tr("&Open…"), QKeySequence::Open, [this] { AskOpen(); }, false);
  Add(
      file, tr("Open &Folder…"), QKeySequence("Ctrl+Shift+O"), [this] { AskOpenFolder(); }, false);
  QMenu* recent = file->addMenu(tr("Open &Recent"));
  connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecent(recent); });
  file->addSeparator();
  QAction* save = Add(file, tr("&Save"), QKeySequence::Save, [this] { Save(); });
  Add(file, tr("Save &As…"), QKeySequence("Ctrl+Shift+S"), [this] { AskSaveAs(); });
  Add(file, tr("Re&load"), {}, [this] { session_.Reload(); });
  file->addSeparator();
  const QString all = tr("All files (*)");
  Add(file, tr("Change &Photo…"), {}, [this, all] { AskFile(tr("Photo"), all, WithPhoto); });
  Add(file, tr("Sou&nd…"), {}, [this, all] { AskFile(tr("Sound"), all, WithAudio); });
  Add(file, tr("&Video Behind…"), {}, [this, all] { AskFile(tr("Video"), all, WithVideo); });
  file->addSeparator();
  QAction* render = Add(file, tr("&Make Film…"), QKeySequence("Ctrl+R"), [this] { AskRender(); });
  file->addSeparator();
  Add(
      file, tr("&Quit"), QKeySequence("Ctrl+Q"), [this] { close(); }, false);

  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  undo_ = Add(
      edit, tr("&Undo"), QKeySequence::Undo, [this] { session_.Undo(); }, false);
  redo_ = Add(
      edit, tr("&Redo"), QKeySequence("Ctrl+Shift+Z"), [this] { session_.Redo(); }, false);
  edit->addSeparator();
  Add(edit, tr("&Copy View"), QKeySequence::Copy, [this] { CopyView(); });
  Add(edit, tr("&Paste View"), QKeySequence::Paste, [this] { PasteView(); });
  Add(edit, tr("Copy as Co&mmand"), QKeySequence("Ctrl+Shift+C"),
      [this] { QGuiApplication::clipboard()->setText(CommandLine()); });

  MakeViewMenu(menuBar()->addMenu(tr("&Views")));
  QMenu* moves = menuBar()->addMenu(tr("&Moves"));
  MakeMoveMenu(moves);

  MakePictureMenu(menuBar()->addMenu(tr("&Pictures")));

  QMenu* show = menuBar()->addMenu(tr("&Show"));
  Add(show, tr("&Play or Pause"), QKeySequence("Ctrl+Space"),
      [this] { preview_.Playing() ? preview_.Pause() : preview_.Play(); });
  Add(show, tr("&Fit Photo"), QKeySequence("Ctrl+0"), [this] { canvas_->FitPhoto(); });
  Add(show, tr("Photo’s &Pixels"), QKeySequence("Ctrl+1"), [this] { canvas_->ShowPixels(); });
  Add(show, tr("Zoom &In"), QKeySequence::ZoomIn, [this] { canvas_->ZoomIn(); });
  Add(show, tr("Zoom &Out"), QKeySequence::ZoomOut, [this] { canvas_->ZoomOut(); });
  show->addSeparator();
  QAction* safe = Add(show, tr("&Action-Safe Frame"), QKeySequence("Ctrl+T"), [] {});
  safe->setCheckable(true);
  connect(safe, &QAction::toggled, previewView_, &PreviewView::SetActionSafe);
  Add(show, tr("F&ull Screen Preview"), QKeySequence("F11"),
      [this] { previewView_->SwitchFullScreen(); });
  MakeThemeMenu(show->addMenu(tr("&Colours")));
  QAction* films = queueDock_->toggleViewAction();
  films->setText(tr("Fi&lms Being Made"));
  show->addAction(films);
  QAction* clear = Add(
      show, tr("Clear Fi&nished Films"), QKeySequence("Ctrl+Shift+Del"),
      [this] { queue_->ClearFinished(); }, false);
  const auto offer = [this, clear] { clear->setEnabled(queue_->Finished() > 0); };
  connect(queue_, &RenderQueue::FilmsChanged, clear, offer);
  offer();

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  Add(
      help, tr("&Keyboard and Mouse"), QKeySequence("F1"), [this] { ShowShortcuts(*this); }, false);
  Add(
      help, tr("&About"), {},
      [this] {
        QMessageBox::about(
            this, tr("About"),
            tr("Kelto Pan & Zoom %1\n\nTurns photographs into films with a moving view.")
                .arg(QCoreApplication::applicationVersion()));
      },
      false);

  QToolBar* bar = addToolBar(tr("Toolbar"));
  bar->setObjectName("toolbar");
  bar->setMovable(false);
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  bar->addActions({open, save});
  bar->addSeparator();
  bar->addActions({undo_, redo_});
  bar->addSeparator();
  auto* movesButton = new QToolButton;
  movesButton->setText(tr("Moves"));
  movesButton->setMenu(moves);
  movesButton->setPopupMode(QToolButton::InstantPopup);
  movesButton->setFocusPolicy(Qt::NoFocus);  // as the other buttons: the menu bar has its keys
  bar->addWidget(movesButton);
  auto* gap = new QWidget;
  gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar->addWidget(gap);
  bar->addAction(render);
}

void MainWindow::MakeThemeMenu(QMenu* menu) {
  auto* themes = new QActionGroup(this);
  const QString now = QSettings().value(kThemeSetting, "system").toString();
  for (const auto& [text, name] :
       {std::pair{tr("&System"), "system"}, {tr("&Light"), "light"}, {tr("&Dark"), "dark"}}) {
    QAction* action = themes->addAction(text);
    action->setCheckable(true);
    action->setChecked(now == name);
    connect(action, &QAction::triggered, this, [theme = QString(name)] {
      QSettings().setValue(kThemeSetting, theme);
      UseTheme(theme);
    });
  }
  menu->addActions(themes->actions());
}

void MainWindow::MakeMoveMenu(QMenu* menu) {
  for (const NamedMove& move : kMoves) {
    Add(menu, QCoreApplication::translate("Moves", move.text), {}, [this, move] {
      Change(tr("Choose Move"),
             [=, this](const Document& d) { return WithMove(d, session_.Photo(), move.name); });
    });
  }
  menu->addSeparator();
  Add(menu, tr("Find by &Itself"), QKeySequence("Ctrl+M"), [this] { SuggestMove(); });
}

void MainWindow::MakeViewMenu(QMenu* menu) {
  Add(menu, tr("&Add Stop"), QKeySequence("Ctrl+Return"), [this] {
    const CanvasScene scene =
        CanvasSceneOf(session_.Plan(), session_.Photo(), selected_, false, {});
    if (scene.views.empty()) return;
    const auto at = static_cast<size_t>(std::max(selected_, 0));
    emit canvas_->ViewAdded(scene.views[at]);
  });
  removeStop_ = Add(menu, tr("&Remove Stop"), {}, [this] { emit canvas_->ViewRemoved(selected_); });
  menu->addSeparator();
  Add(menu, tr("&Swap Start and End"), QKeySequence("Ctrl+E"), [this] {
    Change(tr("Swap Start and End"), [](const Document& d) { return WithEndsSwapped(d); });
  });
  Add(menu, tr("Re&verse"), QKeySequence("Ctrl+Shift+E"),
      [this] { Change(tr("Reverse"), [](const Document& d) { return WithTourReversed(d); }); });
  Add(menu, tr("&Fit to Whole Photo"), QKeySequence("Ctrl+W"), [this] { FitView(); });
  menu->addSeparator();
  beyond_ = Add(menu, tr("&Beyond the Edges"), {}, [] {});
  beyond_->setCheckable(true);
  beyond_->setToolTip(tr("Views may show what lies beside the photo"));
  connect(beyond_, &QAction::toggled, this, [this] { ShowDocument(); });
  keysToViews_ = Add(menu, tr("Make &Keys Views"), {}, [this] {
    Change(tr("Make Keys Views"),
           [this](const Document& d) { return WithKeysAsViews(d, session_.Photo()); });
  });
}

void MainWindow::ShowStates() {
  const bool open = session_.IsOpen();
  for (QAction* action : documentActions_) action->setEnabled(open);
  const History& steps = session_.Steps();
  for (QAction* action : showActions_) {
    action->setEnabled(open && session_.Pictures().size() > 1);
  }
  undo_->setEnabled(open && steps.CanUndo());
  redo_->setEnabled(open && steps.CanRedo());
  const QString undone = QString::fromStdString(steps.UndoName());
  const QString redone = QString::fromStdString(steps.RedoName());
  undo_->setText(undone.isEmpty() ? tr("&Undo") : tr("&Undo: %1").arg(undone));
  redo_->setText(redone.isEmpty() ? tr("&Redo") : tr("&Redo: %1").arg(redone));
  undo_->setIconText(tr("Undo"));
  redo_->setIconText(tr("Redo"));
  const size_t views = session_.Plan().views.size();
  removeStop_->setEnabled(open && views > 1 && selected_ >= 0);
  keysToViews_->setEnabled(open && views == 0);
}

void MainWindow::SuggestMove() {
  auto* finder = new MoveFinder(programs_.command, session_.Current(), this);
  const std::string photo = session_.Plan().photo;
  connect(finder, &MoveFinder::Found, this,
          [this, photo](const std::vector<host::TourView>& views) {
            // Another photo may have been opened or chosen since.
            if (session_.Plan().photo != photo) return;
            Change(tr("Find Move"), [&](const Document& d) { return WithViewsOf(d, views); });
          });
  connect(finder, &MoveFinder::Failed, this, &MainWindow::ShowFailure);
  finder->Start();
}

void MainWindow::CopyView() {
  const auto at = static_cast<size_t>(selected_);
  const std::vector<host::PhotoRect> parts = PartsOf(session_.Plan(), session_.Photo());
  if (selected_ < 0 || at >= parts.size()) return;
  QGuiApplication::clipboard()->setText(
      QString::fromStdString(host::TextOf(host::GivenView(parts[at]))));
}

void MainWindow::PasteView() {
  try {
    const std::string text = QGuiApplication::clipboard()->text().trimmed().toStdString();
    const host::PhotoViews views(session_.Plan(), session_.Photo());
    const host::PhotoRect part = views.PartOf(views.ViewOf(host::ParseGivenView(text)));
    emit canvas_->ViewChanged(std::max(selected_, 0), part, NewGesture());
  } catch (const std::exception& error) {
    ShowFailure(tr("The clipboard holds no view: %1").arg(error.what()));
  }
}

void MainWindow::FitView() {
  const host::PhotoViews views(session_.Plan(), session_.Photo());
  const host::PhotoRect part = beyond_->isChecked() ? views.Whole() : views.Fill();
  emit canvas_->ViewChanged(std::max(selected_, 0), part, NewGesture());
}

QString MainWindow::CommandLine() const {
  const std::string path = session_.Current().path;
  const std::string film = path.substr(0, path.rfind('.')) + ".mp4";
  return QString::fromStdString(ShellLine(RenderWords(session_.Current(), film)));
}

void MainWindow::AskEasing(int stop, const QPoint& screen) {
  QMenu menu;
  const EasingWords now = EasingBehind(session_.Plan(), static_cast<size_t>(stop));
  for (const EasingWord& easing : kEasings) {
    QAction* action = menu.addAction(QCoreApplication::translate("Easing", easing.text));
    action->setCheckable(true);
    action->setChecked(now.out == easing.out && now.in == easing.in);
    connect(action, &QAction::triggered, this, [this, stop, easing] {
      Change(tr("Change Easing"), [=](const Document& d) {
        return WithEasing(d, static_cast<size_t>(stop), easing.out, easing.in);
      });
    });
  }
  menu.exec(screen);
}

void MainWindow::AskViewMenu(int view, const QPoint& screen) {
  if (view >= 0) Select(view);
  QMenu menu;
  for (QAction* top : menuBar()->actions()) {
    if (top->menu() != nullptr && top->menu()->actions().contains(beyond_)) {
      menu.addActions(top->menu()->actions());
    }
  }
  menu.exec(screen);
}

}  // namespace kelto::editor
