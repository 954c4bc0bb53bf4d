// Random mouse, wheel, keys and menu entries on all of the window, the same in each run: films of
// views and of keys, slideshows, dialogs, files that are none. KELTO_EVENT_SECONDS lets it go on
// for longer than a test, and has it print the memory that it takes.
#include <gtest/gtest.h>
#include <malloc.h>

#include <QDesktopServices>
#include <QFile>
#include <QPixmapCache>
#include <QtWidgets>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>

#include "editor/window/main_window.h"
#include "editor/window/render_queue.h"
#include "host/project/show_project.h"
#include "tests/editor/window/support.h"

#ifdef __SANITIZE_ADDRESS__
// Of the run-time library, whose header GCC leaves out in Debian.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace kelto::editor {
namespace {

constexpr int kEventsOfATest = 500;
/// Events after which something else is opened, so that what undo keeps does not grow.
constexpr int kEventsOfAFile = 250;
/// Turns of the timer for which a dialog or a menu gets random events before it is closed.
constexpr int kTurnsOfADialog = 6;

void WriteText(const QString& name, const QByteArray& text) {
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text);
}

double ResidentMegabytes() {
  std::ifstream file("/proc/self/statm");
  long pages = 0, resident = 0;
  file >> pages >> resident;
  return static_cast<double>(resident) * 4096 / 1e6;
}

/// What was allocated and not freed: unlike resident memory, it does not grow with what an
/// allocator keeps for itself.
double AllocatedMegabytes() {
#ifdef __SANITIZE_ADDRESS__
  return static_cast<double>(__sanitizer_get_current_allocated_bytes()) / 1e6;
#else
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
#endif
}

/// Files of every kind that may be opened, and some that may not.
class RandomFiles {
 public:
  RandomFiles() {
    QDir(folder_.path()).mkdir("photos");
    for (int i = 0; i < 4; ++i) {
      QImage photo(i == 1 ? QSize(120, 300) : QSize(320, 200), QImage::Format_RGB32);
      photo.fill(QColor::fromHsv(80 * i, 200, 200));
      photo.save(Photo(i));
    }
    WriteProjects();
  }
  /// As they were at first: what events have saved would grow, and memory with it.
  void WriteProjects() const {
    WriteText(Name("keys.json"),
              R"({"image": "photos/0.png", "film": {"width": 320, "height": 180, "seconds": 3},
                  "parameters": {"size": [{"time": 0, "value": 1}, {"time": 0.5, "value": 2},
                                          {"time": 1, "value": 1.5}]}})");
    WriteText(Name("show.json"),
              R"({"film": {"width": 320, "height": 180}, "title": "Summer", "caption": "here",
                  "fadeKind": "dip", "each": 2, "fade": 0.5, "pictures": [
                    {"image": "photos/0.png"}, {"image": "photos/1.png", "fade": 0.2},
                    {"image": "photos/2.png", "each": 3}]})");
    WriteText(Name("broken.json"), R"({"image": "photos/0.png", "views": [{"view": 3}]})");
    WriteText(Name("none.png"), "no picture");
  }
  QString Name(const QString& name) const { return folder_.filePath(name); }
  QString Photo(int number) const { return Name(QString("photos/%1.png").arg(number)); }
  QStringList All() const {
    return {Photo(0),          Photo(1),       Name("photos"),      Name("keys.json"),
            Name("show.json"), Name("a.json"), Name("broken.json"), Name("none.png")};
  }

 private:
  QTemporaryDir folder_;
};

class RandomWindow : public testing::Test {
 protected:
  RandomWindow() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    // Qt 6.4 keeps the name of each pixmap that styles and icons have ever cached, which would
    // cover what the editor itself keeps.
    QPixmapCache::setCacheLimit(0);
    // No other program is to show the films.
    QDesktopServices::setUrlHandler("file", &window_, "");
    window_.resize(1280, 720);
    window_.show();
    LookAtDialogs();
  }
  ~RandomWindow() override {
    over_ = true;
    QDesktopServices::unsetUrlHandler("file");
    QPixmapCache::setCacheLimit(cacheLimit_);
    window_.TheSession().DropRecovery();
  }

  int Number(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }

  template <typename List>
  auto OneOf(const List& list) {
    return list[Number(0, static_cast<int>(std::size(list)) - 1)];
  }

  Qt::KeyboardModifiers SomeKeys() {
    constexpr Qt::KeyboardModifiers kAll[] = {Qt::NoModifier,      Qt::NoModifier,
                                              Qt::NoModifier,      Qt::ShiftModifier,
                                              Qt::ControlModifier, Qt::AltModifier};
    return OneOf(kAll);
  }

  /// One thing that somebody may do to a widget.
  void Do(QWidget* widget) {
    constexpr Qt::Key kKeys[] = {
        Qt::Key_Left, Qt::Key_Right,  Qt::Key_Up,    Qt::Key_Down, Qt::Key_Plus, Qt::Key_Minus,
        Qt::Key_Home, Qt::Key_Delete, Qt::Key_Space, Qt::Key_Tab,  Qt::Key_0,    Qt::Key_1,
        Qt::Key_7,    Qt::Key_Escape, Qt::Key_End,   Qt::Key_C,    Qt::Key_V,    Qt::Key_Backtab};
    constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::LeftButton, Qt::LeftButton,
                                            Qt::MiddleButton, Qt::RightButton};
    const QPoint at(Number(-5, widget->width() + 5), Number(-5, widget->height() + 5));
    switch (Number(0, 9)) {
      case 0:
      case 1:
        held_ = OneOf(kButtons);
        return QTest::mousePress(widget, held_, SomeKeys(), at);
      case 2:
      case 3:
        return QTest::mouseRelease(widget, held_, SomeKeys(), at);
      case 4:
        return QTest::mouseDClick(widget, Qt::LeftButton, SomeKeys(), at);
      case 5: {
        QWheelEvent turn(at, widget->mapToGlobal(at), {}, {0, Number(-3, 3) * 120}, Qt::NoButton,
                         SomeKeys(), Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &turn);
        return;
      }
      case 6:
      case 7:
        return QTest::keyClick(widget, OneOf(kKeys), SomeKeys());
      default: {
        QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, held_,
                         SomeKeys());
        QCoreApplication::sendEvent(widget, &move);
      }
    }
  }

  void DoToPartOf(QWidget* top) {
    QWidgetList seen{top};
    for (QWidget* part : top->findChildren<QWidget*>()) {
      if (part->isVisible() && part->isEnabled()) seen << part;
    }
    // Canvas and timeline are where most of the work is done.
    if (top == &window_ && Number(0, 2) == 0) {
      seen = {&window_.TheCanvas(), &window_.TheTimeline()};
    }
    Do(OneOf(seen));
  }

  void ChooseFromMenus() {
    QList<QAction*> actions;
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->isEnabled() && action->menu() == nullptr && !action->isSeparator()) {
        actions << action;
      }
    }
    OneOf(actions)->trigger();
    // It may have been the one that quits.
    if (!window_.isVisible()) window_.show();
  }

  /// Those who ask wait in event loops of their own, for what this timer does.
  void LookAtDialogs() {
    QTimer::singleShot(5, &window_, [this] {
      if (over_) return;
      LookAtDialogs();
      QWidget* asking = QApplication::activePopupWidget();
      if (asking == nullptr) asking = QApplication::activeModalWidget();
      turns_ = asking != nullptr && asking == asked_ ? turns_ + 1 : 0;
      asked_ = asking;
      if (asking == nullptr) return;
      ++dialogs_;
      if (auto* files = qobject_cast<QFileDialog*>(asking)) return Answer(*files);
      if (turns_ < kTurnsOfADialog) return DoToPartOf(asking);
      asking->close();
    });
  }

  /// In a dialog of files random events could reach files of others.
  void Answer(QFileDialog& dialog) {
    if (turns_ >= kTurnsOfADialog || Number(0, 2) == 0) return dialog.reject();
    dialog.selectFile(dialog.acceptMode() == QFileDialog::AcceptSave ? files_.Name("a.json")
                                                                     : OneOf(files_.All()));
    static_cast<QDialog&>(dialog).accept();
  }

  void StopFilms() {
    for (RenderJob* job : window_.TheQueue().findChildren<RenderJob*>()) job->Cancel();
  }

  void Check() {
    const Session& session = window_.TheSession();
    if (!session.IsOpen()) return;
    EXPECT_EQ(PlanOf(session.Current()).views.size(), session.Plan().views.size());
    EXPECT_EQ(PicturesOf(session.Current()).size(), session.Pictures().size());
    EXPECT_LT(window_.Selected(), static_cast<int>(session.Plan().views.size()));
  }

  RandomFiles files_;
  MainWindow window_;
  std::mt19937 random_{15};
  Qt::MouseButton held_ = Qt::LeftButton;
  QPointer<QWidget> asked_;
  const int cacheLimit_ = QPixmapCache::cacheLimit();
  int turns_ = 0;
  int64_t dialogs_ = 0;
  bool over_ = false;
};

TEST_F(RandomWindow, EventsLeaveAWindowWithAProjectThatCanBeRead) {
  const double wanted = qEnvironmentVariable("KELTO_EVENT_SECONDS", "0").toDouble();
  const auto begin = std::chrono::steady_clock::now();
  int64_t events = 0;
  double reported = 0.0;
  for (;; ++events) {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    if (events >= kEventsOfATest && passed.count() >= wanted) break;
    if (events % kEventsOfAFile == 0) {
      StopFilms();
      QFile::remove(files_.Name("a.json"));
      files_.WriteProjects();
      window_.Open(events / kEventsOfAFile % 2 == 0 ? files_.Name("show.json")
                                                    : OneOf(files_.All()));
    } else if (Number(0, 15) == 0) {
      ChooseFromMenus();
    } else {
      QWidgetList tops;
      for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->isVisible()) tops << top;
      }
      DoToPartOf(Number(0, 3) != 0 || tops.isEmpty() ? &window_ : OneOf(tops));
    }
    if (events % 10 == 0) QTest::qWait(5);
    if (events % 50 == 0) Check();
    if (wanted > 0.0 && passed.count() >= reported) {
      std::printf(
          "%6.0f s %8lld events %6lld turns of dialogs %4lld widgets %7.1f MB allocated"
          " %7.1f MB resident\n",
          passed.count(), static_cast<long long>(events), static_cast<long long>(dialogs_),
          static_cast<long long>(QApplication::allWidgets().size()), AllocatedMegabytes(),
          ResidentMegabytes());
      std::fflush(stdout);
      reported += 60.0;
    }
  }
  StopFilms();
  window_.TheSession().Settle();
  Check();
  // All of the last file's changes can be taken back and made again.
  Session& session = window_.TheSession();
  const std::string last = session.Current().text;
  while (session.Steps().CanUndo()) session.Undo();
  while (session.Steps().CanRedo()) session.Redo();
  EXPECT_EQ(session.Current().text, last);
}

}  // namespace
}  // namespace kelto::editor
