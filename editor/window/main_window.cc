#include "editor/window/main_window.h"

#include <QtWidgets>
#include <algorithm>

#include "editor/document/settings.h"
#include "editor/document/tour_changes.h"
#include "editor/preview/photo_size.h"
#include "editor/window/film_panel.h"
#include "editor/window/key_panel.h"
#include "editor/window/render_queue.h"
#include "editor/window/scenes.h"
#include "editor/window/sizes_dialog.h"
#include "editor/window/small_screens.h"
#include "editor/window/view_panel.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

/// Windows less high than this have a timeline of low rows.
constexpr int kLowWindow = 520;
/// Of the panels: a row of them.
constexpr int kLeastPanels = 48;

}  // namespace

MainWindow::MainWindow(const Programs& programs, QWidget* parent)
    : QMainWindow(parent),
      programs_(programs),
      session_(
          [programs](const std::string& photo) {
            return FindPhotoSize(programs.preview, programs.module, photo);
          },
          [this](const std::vector<std::string>& photos) { return FindSizes(photos); }),
      preview_(programs.preview, programs.module),
      thumbnails_(programs.preview, programs.module, Strip::kThumbnail),
      wave_(programs.preview, programs.module) {
  setAcceptDrops(true);
  MakeWidgets();
  MakeActions();
  OrderTabs();
  Connect();
  ShowDocument();
  ShowTitle();
  ShowStates();
  resize(QSize(1440, 900).boundedTo(screen()->availableSize() - QSize(8, 40)));
  const QSettings settings;
  restoreGeometry(settings.value("window/geometry").toByteArray());
}

MainWindow::~MainWindow() {
  // A number that is being typed is entered as its box loses the focus, which takes a window.
  hide();
}

FoundSizes MainWindow::FindSizes(const std::vector<std::string>& photos) {
  const auto find = [this](const std::vector<std::string>& some, const SizesProgress& progress) {
    return FindPhotoSizes(programs_.preview, programs_.module, some, progress);
  };
  return FindWithDialog(photos, find, this);
}

void MainWindow::MakeWidgets() {
  canvas_ = new Canvas;
  previewView_ = new PreviewView;
  previewView_->setAccessibleName(tr("Film"));
  timeline_ = new Timeline;
  strip_ = new Strip;
  strip_->hide();
  viewPanel_ = new ViewPanel;
  keyPanel_ = new KeyPanel;
  keyPanel_->hide();
  filmPanel_ = new FilmPanel;
  notice_ = new QLabel;
  notice_->setObjectName("notice");
  // Names from strangers are in it, which rich text would have read files.
  notice_->setTextFormat(Qt::PlainText);
  notice_->setWordWrap(true);
  notice_->setMargin(8);
  notice_->setAutoFillBackground(true);
  notice_->setBackgroundRole(QPalette::ToolTipBase);
  notice_->setForegroundRole(QPalette::ToolTipText);
  notice_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  notice_->hide();

  auto* panels = new QWidget;
  auto* panelColumn = new QVBoxLayout(panels);
  panelColumn->setContentsMargins(12, 8, 12, 12);
  panelColumn->setSpacing(12);
  panelColumn->addWidget(viewPanel_);
  panelColumn->addWidget(keyPanel_);
  panelColumn->addWidget(filmPanel_);
  panelColumn->addStretch();
  LeaveWheelToScrolling(*panels);
  QScrollArea* scroll = Scrolling(panels);
  scroll->setMinimumHeight(kLeastPanels);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setMinimumWidth(panels->minimumSizeHint().width() + 20);

  side_ = new QSplitter(Qt::Vertical);
  side_->addWidget(previewView_);
  side_->addWidget(scroll);
  side_->setChildrenCollapsible(false);
  connect(side_, &QSplitter::splitterMoved, this, [this] { sideChosen_ = true; });

  auto* top = new QSplitter(Qt::Horizontal);
  top->addWidget(canvas_);
  top->addWidget(side_);
  top->setStretchFactor(0, 1);
  top->setStretchFactor(1, 0);
  top->setChildrenCollapsible(false);
  top->setSizes({900, 420});
  connect(top, &QSplitter::splitterMoved, this, &MainWindow::FitSide);

  auto* all = new QSplitter(Qt::Vertical);
  all->addWidget(top);
  all->addWidget(timeline_);
  all->setStretchFactor(0, 1);
  all->setStretchFactor(1, 0);
  all->setChildrenCollapsible(false);

  auto* work = new QWidget;
  auto* column = new QVBoxLayout(work);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(all, 1);
  column->addWidget(strip_);
  auto* central = new QWidget;
  auto* centralColumn = new QVBoxLayout(central);
  centralColumn->setContentsMargins(0, 0, 0, 0);
  centralColumn->setSpacing(0);
  // Lines of text in what scrolls would give all of it its usual height, and no less.
  centralColumn->addWidget(notice_);
  // Where there is no room for all of it, as on a small screen below a slideshow's pictures.
  centralColumn->addWidget(Scrolling(work), 1);
  setCentralWidget(central);

  queue_ = new RenderQueue(programs_.command);
  queueDock_ = new QDockWidget(tr("Films being made"));
  queueDock_->setObjectName("films");
  queueDock_->setWidget(queue_);
  addDockWidget(Qt::BottomDockWidgetArea, queueDock_);
  queueDock_->hide();
  connect(queue_, &RenderQueue::FilmsChanged, this, [this] {
    if (queue_->Finished() + queue_->Unfinished() == 0) queueDock_->hide();
  });
}

void MainWindow::OrderTabs() {
  QWidget* last = nullptr;
  const auto follow = [&](QWidget* next) {
    // Editors within boxes are their boxes' own.
    const bool own = next->objectName().startsWith("qt_") || next->focusProxy() != nullptr;
    if (own || (next->focusPolicy() & Qt::TabFocus) == 0) return;
    if (last != nullptr) setTabOrder(last, next);
    last = next;
  };
  // The strip and the films being made come behind these as it is.
  for (QWidget* part : std::initializer_list<QWidget*>{canvas_, previewView_, viewPanel_, keyPanel_,
                                                       filmPanel_, timeline_}) {
    follow(part);
    for (QWidget* child : part->findChildren<QWidget*>()) follow(child);
  }
}

void MainWindow::Connect() {
  connect(&session_, &Session::Changed, this, [this] {
    preview_.SetPlan(session_.Plan(), session_.Fades());
    ShowDocument();
  });
  connect(&session_, &Session::CameToNothing, this, &MainWindow::ShowDocument);
  connect(&session_, &Session::StateChanged, this, &MainWindow::ShowStates);
  connect(&session_, &Session::StateChanged, this, &MainWindow::ShowTitle);
  connect(&session_, &Session::Failed, this, &MainWindow::ShowFailure);
  connect(&session_, &Session::FileChanged, this, &MainWindow::OnFileChanged);

  connect(canvas_, &Canvas::ViewChanged, this,
          [this](int view, const host::PhotoRect& part, Gesture gesture) {
            Change(
                tr("Move View"),
                [=](const Document& d) { return WithPart(d, static_cast<size_t>(view), part); },
                gesture);
          });
  connect(canvas_, &Canvas::ViewSelected, this, &MainWindow::Select);
  connect(canvas_, &Canvas::ViewAdded, this, [this](const host::PhotoRect& part) {
    const int last = static_cast<int>(session_.Plan().views.size()) - 1;
    // Between start and end where neither says otherwise: the end stays the end. A film of keys
    // has no views.
    const int after = std::max(0, selected_ < 0 ? last - 1 : std::min(selected_, last - 1));
    Change(tr("Add Stop"),
           [=](const Document& d) { return WithStopAfter(d, static_cast<size_t>(after), part); });
    Select(after + 1);
  });
  connect(canvas_, &Canvas::ViewRemoved, this, [this](int view) {
    Change(tr("Remove Stop"),
           [=](const Document& d) { return WithoutStop(d, static_cast<size_t>(view)); });
    Select(std::min(view, static_cast<int>(session_.Plan().views.size()) - 1));
  });
  connect(canvas_, &Canvas::PlayAsked, this,
          [this] { preview_.Playing() ? preview_.Pause() : preview_.Play(); });
  connect(canvas_, &Canvas::MenuAsked, this, &MainWindow::AskViewMenu);

  connect(timeline_, &Timeline::TimeAsked, this, [this](double seconds) {
    const double rate = session_.Plan().format.rate.PerSecond();
    preview_.Seek(static_cast<int32_t>(std::lround(seconds * rate)) + session_.Fades().Lead());
    ShowTime();
  });
  connect(timeline_, &Timeline::StopSelected, this, &MainWindow::Select);
  connect(timeline_, &Timeline::StopTimesChanged, this,
          [this](const StopTimes& times, Gesture gesture) {
            std::vector<std::pair<double, double>> pairs;
            for (const StopTime& time : times) pairs.emplace_back(time.hold, time.go);
            Change(
                tr("Change Times"), [&](const Document& d) { return WithTimes(d, pairs); },
                gesture);
          });
  connect(timeline_, &Timeline::EasingAsked, this, &MainWindow::AskEasing);
  ConnectKeys();

  connect(previewView_, &PreviewView::PlayAsked, &preview_, &Preview::Play);
  connect(previewView_, &PreviewView::PauseAsked, &preview_, &Preview::Pause);
  connect(previewView_, &PreviewView::FrameAsked, &preview_, &Preview::Seek);
  connect(previewView_, &PreviewView::LoopAsked, &preview_, &Preview::SetLoop);
  connect(previewView_, &PreviewView::BoxChanged, &preview_, &Preview::SetBox);
  connect(&preview_, &Preview::PhotoRead, canvas_, &Canvas::SetPhoto);
  connect(canvas_, &Canvas::DetailWanted, &preview_, &Preview::WantWholePhoto);
  connect(&preview_, &Preview::FrameDrawn, this, [this](const QImage& image, int32_t frame) {
    previewView_->SetNotice("");
    previewView_->SetFrame(image, frame);
    ShowTime();
  });
  connect(&preview_, &Preview::WayFound, this, [this](const FilmWay& way) {
    way_ = way;
    canvas_->SetWay(way_);
    timeline_->SetWay(way_);
  });
  connect(&preview_, &Preview::PlayingChanged, previewView_, &PreviewView::SetPlaying);
  connect(&preview_, &Preview::Failed, previewView_, &PreviewView::SetNotice);

  connect(viewPanel_, &ViewPanel::PartChanged, canvas_, &Canvas::ViewChanged);
  connect(viewPanel_, &ViewPanel::TimesChanged, this, [this](double hold, double go) {
    StopTimes times = StopTimesOf(session_.Plan());
    if (selected_ < 0 || selected_ >= static_cast<int>(times.size())) return;
    times[static_cast<size_t>(selected_)] = {hold, go};
    emit timeline_->StopTimesChanged(times, NewGesture());
  });
  ConnectStrip();
  connect(&wave_, &SoundWave::Read, this, &MainWindow::ShowDocument);
  connect(&wave_, &SoundWave::Failed, this, &MainWindow::ShowFailure);
  connect(filmPanel_, &FilmPanel::Changed, this,
          [this](const QString& name, const Session::Change& change) { Change(name, change); });
}

void MainWindow::Change(const QString& name, const Session::Change& change, Gesture gesture) {
  notice_->hide();
  session_.Apply(name, change, gesture);
}

void MainWindow::Select(int view) {
  selected_ = view;
  ShowDocument();
  ShowStates();
}

void MainWindow::FitSide() {
  if (sideChosen_) return;
  // The panels keep a third, and scroll.
  const QList<int> sizes = side_->sizes();
  const int height = sizes[0] + sizes[1];
  const int film = std::min(height * 2 / 3, previewView_->HeightFor(side_->width()));
  side_->setSizes({film, height - film});
}

void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  // Once what is in the window has its sizes.
  QTimer::singleShot(0, this, &MainWindow::FitSide);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  timeline_->SetLow(height() < kLowWindow);
  QTimer::singleShot(0, this, &MainWindow::FitSide);
}

void MainWindow::ShowDocument() {
  const bool open = session_.IsOpen();
  for (QWidget* widget : {static_cast<QWidget*>(timeline_), static_cast<QWidget*>(previewView_),
                          static_cast<QWidget*>(viewPanel_), static_cast<QWidget*>(keyPanel_),
                          static_cast<QWidget*>(filmPanel_)}) {
    widget->setEnabled(open);
  }
  ShowPictures();
  if (!open) {
    canvas_->SetNotice(tr("Open a photograph, or drop one here"));
    return;
  }
  canvas_->SetNotice("");
  const host::RenderPlan& plan = session_.Plan();
  try {
    selected_ = std::min(selected_, static_cast<int>(plan.views.size()) - 1);
    const CanvasScene scene =
        CanvasSceneOf(plan, session_.Photo(), selected_, beyond_->isChecked(), way_);
    canvas_->SetScene(scene);
    TimelineScene times = TimelineSceneOf(plan, selected_, way_);
    wave_.Want(plan.audio);
    times.sound = SoundDuring(wave_.Peaks(), session_.SoundBegin(), times.length);
    timeline_->SetScene(times);
    previewView_->SetFilm(plan.format, plan.frames + session_.Fades().Lead());
    viewPanel_->Show(scene, StopTimesOf(plan));
    viewPanel_->setVisible(!plan.views.empty());
    keyPanel_->setVisible(plan.views.empty());
    keyPanel_->Show(plan, timeline_->SelectedKeys());
    filmPanel_->Show(plan);
  } catch (const host::Error& error) {
    ShowFailure(QString::fromStdString(error.what()));
  }
  ShowTime();
}

void MainWindow::ShowTime() {
  if (!session_.IsOpen()) return;
  // Below 0 while the card before a show's first picture is seen.
  const int32_t frame = preview_.Frame() - session_.Fades().Lead();
  const double seconds = frame / session_.Plan().format.rate.PerSecond();
  canvas_->SetTime(seconds);
  timeline_->SetTime(seconds);
}

void MainWindow::ShowTitle() {
  setWindowTitle(session_.IsOpen()
                     ? QFileInfo(session_.Path()).fileName() + "[*] – Kelto Pan & Zoom"
                     : QString("Kelto Pan & Zoom[*]"));
  setWindowModified(session_.Modified());
  setWindowFilePath(session_.IsOpen() ? session_.Path() : QString());
}

void MainWindow::ShowFailure(const QString& reason) {
  notice_->setText(reason);
  notice_->show();
}

}  // namespace kelto::editor
