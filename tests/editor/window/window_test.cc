// The window as a whole: events in, the project's JSON out.
#include <gtest/gtest.h>

#include <QtWidgets>
#include <nlohmann/json.hpp>

#include "editor/document/recovery.h"
#include "editor/document/settings.h"
#include "editor/document/tour_changes.h"
#include "editor/window/main_window.h"
#include "editor/window/move_finder.h"
#include "editor/window/render_dialog.h"
#include "editor/window/render_queue.h"
#include "host/files/start.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

class Window : public testing::Test {
 protected:
  Window() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    window_.resize(1280, 720);
    window_.show();
    EXPECT_TRUE(window_.Open(folder_.Photo()));
  }
  ~Window() override {
    // No question at the end of a test.
    window_.TheSession().Save();
  }

  nlohmann::json Json() { return nlohmann::json::parse(window_.TheSession().Current().text); }
  /// The numbers of a view's part of the photo.
  std::vector<double> Part(size_t view) {
    std::vector<double> numbers;
    for (const QString& number : QString::fromStdString(Json()["views"][view]["view"]).split(',')) {
      numbers.push_back(number.toDouble());
    }
    return numbers;
  }
  /// Chooses the entry of the menus that reads so.
  void Choose(const QString& text) {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&') != text || !action->isEnabled()) continue;
      return action->trigger();
    }
    FAIL() << text.toStdString() << " is in no menu, or disabled";
  }
  template <typename Widget>
  Widget* Named(const QString& name) {
    return WidgetNamed<Widget>(window_, name);
  }

  PhotoFolder folder_;
  MainWindow window_;
};

TEST_F(Window, ArrowsMoveTheSelectedViewByAPixelOfThePhoto) {
  window_.Select(1);
  const std::vector<double> before = Part(1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_NEAR(Part(1)[0], before[0] + 1, 1e-3);
  EXPECT_NEAR(Part(1)[1], before[1] + 10, 1e-3);
  EXPECT_NEAR(Part(1)[2], before[2], 1e-3);
}

TEST_F(Window, UndoTakesBackWhatItNames) {
  window_.Select(1);
  const std::vector<double> before = Part(1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  const std::vector<double> after = Part(1);
  Choose("Undo: Move View");
  EXPECT_EQ(Part(1), before);
  Choose("Redo: Move View");
  EXPECT_EQ(Part(1), after);
}

TEST_F(Window, TheTitleSaysWhatIsUnsaved) {
  EXPECT_EQ(window_.windowTitle(), "photo.json[*] – Kelto Pan & Zoom");
  EXPECT_TRUE(window_.isWindowModified());
  Choose("Save");
  EXPECT_FALSE(window_.isWindowModified());
  window_.Select(1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Left);
  EXPECT_TRUE(window_.isWindowModified());
}

TEST_F(Window, MovesByNameReplaceTheViews) {
  Choose("Pan right");
  const std::vector<double> first = Part(0), last = Part(1);
  EXPECT_LT(first[0], last[0]);
  EXPECT_EQ(first[1], last[1]);
  EXPECT_EQ(first[2], last[2]);
}

TEST_F(Window, TheMoveThatThePhotoSuggestsIsTheCommands) {
  Choose("Find by Itself");
  const std::string before = window_.TheSession().Current().text;
  ASSERT_TRUE(WaitFor([&] { return window_.TheSession().Current().text != before; }));
  QProcess command;
  command.start(KELTO_COMMAND, {"new", folder_.Photo(), "-o", "-", "--move", "auto"});
  ASSERT_TRUE(command.waitForFinished(60000));
  const auto project = nlohmann::json::parse(command.readAllStandardOutput().toStdString());
  EXPECT_EQ(Json()["views"].size(), project["views"].size());
  EXPECT_EQ(Json()["views"][0]["view"], project["views"][0]["view"]);
  EXPECT_EQ(Json()["views"][1]["view"], project["views"][1]["view"]);
}

TEST(ClosedWindow, LeavesTheSearchForAMove) {
  const PhotoFolder folder;
  qputenv("KELTO_MODULE", KELTO_MODULE);
  auto window = std::make_unique<MainWindow>(Programs{KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE});
  ASSERT_TRUE(window->Open(folder.Photo()));
  for (QAction* action : window->findChildren<QAction*>()) {
    if (action->text().remove('&') == "Find by Itself") action->trigger();
  }
  ASSERT_EQ(window->findChildren<MoveFinder*>().size(), 1);
  window->TheSession().Save();
  window.reset();
}

TEST_F(Window, AMoveThatIsFoundTooLateForItsPhotoIsLeft) {
  const QString other = folder_.File("other.png");
  QImage(400, 300, QImage::Format_RGB32).save(other);
  Choose("Find by Itself");
  window_.TheSession().Save();
  ASSERT_TRUE(window_.Open(other));
  const std::string before = window_.TheSession().Current().text;
  ASSERT_TRUE(WaitFor([&] { return window_.findChildren<MoveFinder*>().isEmpty(); }));
  EXPECT_EQ(window_.TheSession().Current().text, before);
}

TEST_F(Window, StartAndEndSwapAndReverse) {
  const std::vector<double> first = Part(0), last = Part(1);
  Choose("Swap Start and End");
  EXPECT_EQ(Part(0), last);
  Choose("Reverse");
  EXPECT_EQ(Part(0), first);
}

TEST_F(Window, ViewsAreCopiedAsTheCommandTakesThem) {
  window_.Select(1);
  Choose("Copy View");
  const std::vector<double> end = Part(1);
  window_.Select(0);
  Choose("Paste View");
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(Part(0)[i], end[i], 1e-2);
  QGuiApplication::clipboard()->setText("nonsense");
  const std::string before = window_.TheSession().Current().text;
  Choose("Paste View");
  EXPECT_EQ(window_.TheSession().Current().text, before);
  EXPECT_TRUE(
      window_.findChild<QLabel*>("notice")->text().startsWith("The clipboard holds no view: "));
}

TEST_F(Window, MenusSayWhatIsWrongWithViewsBesideAnotherPhoto) {
  const QString small = folder_.File("small.png");
  ASSERT_TRUE(QImage(40, 30, QImage::Format_RGB32).save(small));
  window_.TheSession().Apply("Photo", [&](const Document& d) {
    Document other = WithPart(d, 1, {900, 700, 640, 360});
    return WithPhoto(other, small.toStdString());
  });
  auto* notice = window_.findChild<QLabel*>("notice");
  for (const char* entry : {"Copy View", "Add Stop"}) {
    notice->hide();
    Choose(entry);
    EXPECT_TRUE(notice->isVisible()) << entry;
    EXPECT_TRUE(notice->text().contains("outside the photo")) << notice->text().toStdString();
  }
}

TEST_F(Window, NumbersCanBeTyped) {
  window_.Select(1);
  auto* width = Named<QDoubleSpinBox>("Width");
  width->setValue(640);
  EXPECT_NEAR(Part(1)[2], 640, 1e-3);
  EXPECT_NEAR(Part(1)[3], 360, 1e-3) << "views keep the film's shape";
  Named<QDoubleSpinBox>("Left")->setValue(5000);
  EXPECT_NEAR(Part(1)[0], 1600 - 640, 1e-3) << "views do not leave the photo";
  Named<QDoubleSpinBox>("Look")->setValue(2.5);
  EXPECT_EQ(Json()["views"][1]["hold"], 2.5);
  EXPECT_EQ(window_.TheSession().Plan().frames, 188) << "5 s and 2.5 s at 25 fps";
}

TEST_F(Window, StopsAreAddedBetweenAndRemoved) {
  window_.Select(0);
  emit window_.TheCanvas().ViewAdded({400, 300, 640, 360});
  ASSERT_EQ(Json()["views"].size(), 3u);
  EXPECT_EQ(Json()["views"][1]["view"], "400,300,640,360");
  EXPECT_EQ(window_.Selected(), 1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Delete);
  EXPECT_EQ(Json()["views"].size(), 2u);
}

TEST_F(Window, NoStopIsRemovedWhereNoneIsSelected) {
  const auto offered = [&] {
    for (const QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&') == "Remove Stop") return action->isEnabled();
    }
    return false;
  };
  window_.Select(-1);
  EXPECT_FALSE(offered());
  window_.Select(1);
  EXPECT_TRUE(offered());
  Choose("Remove Stop");
  EXPECT_EQ(Json()["views"].size(), 1u);
  EXPECT_FALSE(offered()) << "a film has one view at the least";
}

TEST_F(Window, SettingsOfTheFilmAreChosen) {
  auto* size = Named<QComboBox>("Size");
  size->setCurrentIndex(size->findText("1280 × 720"));
  emit size->activated(size->currentIndex());
  EXPECT_EQ(Json()["film"]["width"], 1280);
  EXPECT_EQ(Json()["film"]["height"], 720);
  auto* law = Named<QComboBox>("Motion");
  law->setCurrentIndex(law->findText("Fly"));
  emit law->activated(law->currentIndex());
  EXPECT_EQ(Json()["motion"], "fly");
}

TEST_F(Window, TheCommandLineRendersTheProject) {
  EXPECT_EQ(window_.CommandLine(),
            "kelto render " + folder_.Project() + " -o " + folder_.File("photo.mp4"));
}

TEST_F(Window, ClosingAsksBeforeWorkIsLost) {
  window_.Select(1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Left);
  bool asked = false;
  QTimer::singleShot(0, &window_, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    asked = true;
    box->button(QMessageBox::Cancel)->click();
  });
  EXPECT_FALSE(window_.close());
  EXPECT_TRUE(asked);
  QTimer::singleShot(0, &window_, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    box->button(QMessageBox::Save)->click();
  });
  EXPECT_TRUE(window_.close());
  EXPECT_TRUE(QFileInfo::exists(folder_.Project()));
}

// Rich text reads pictures that it names, which are then decoded outside of every sandbox.
TEST_F(Window, NamesOfFilesAreNeverTakenForRichText) {
  const QString photo = folder_.File("<img src=photo.png><b>.png");
  EXPECT_FALSE(window_.Open(photo));
  EXPECT_TRUE(window_.findChild<QLabel*>("notice")->text().contains("<img"));
  ASSERT_TRUE(QFile::copy(folder_.Photo(), photo));
  ASSERT_TRUE(window_.Open(photo));
  for (const QLabel* label : window_.findChildren<QLabel*>()) {
    EXPECT_TRUE(label->textFormat() == Qt::PlainText || !Qt::mightBeRichText(label->text()))
        << label->text().toStdString();
  }
  for (const QAction* action : window_.findChildren<QAction*>()) {
    EXPECT_FALSE(action->toolTip().contains("<img")) << action->toolTip().toStdString();
  }
  window_.Select(1);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Left);
  bool asked = false;
  QTimer::singleShot(0, &window_, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    asked = true;
    EXPECT_TRUE(box->text().contains("<img"));
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    box->button(QMessageBox::Cancel)->click();
  });
  EXPECT_FALSE(window_.close());
  EXPECT_TRUE(asked);
}

TEST_F(Window, ThePreviewIsTheFilm) {
  Choose("Save");
  auto& preview = window_.ThePreview();
  QImage shown;
  const auto connection = QObject::connect(&preview, &Preview::FrameDrawn,
                                           [&](const QImage& image, int32_t frame, bool exact) {
                                             if (exact && frame == 60)
                                               shown = image.convertToFormat(QImage::Format_RGB32);
                                           });
  preview.Seek(60);
  ASSERT_TRUE(WaitFor([&] { return !shown.isNull(); }));
  QObject::disconnect(connection);
  QProcess command;
  command.start(KELTO_COMMAND, {"render", folder_.Project(), "-o", folder_.File("f-%04d.png"),
                                "--frames", "60..61"});
  ASSERT_TRUE(command.waitForFinished(60000));
  const QImage film = QImage(folder_.File("f-0060.png")).convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(shown.size(), film.size());
  // Colours go by different matrices on their way to the screen and into the file.
  int furthest = 0;
  for (int y = 0; y < film.height(); y += 7) {
    for (int x = 0; x < film.width(); x += 7) {
      furthest = std::max(furthest, std::abs(qGreen(film.pixel(x, y)) - qGreen(shown.pixel(x, y))));
    }
  }
  EXPECT_LE(furthest, 12);
}

TEST_F(Window, TheListOfFilmsGoesWithTheLastOfThem) {
  auto* films = window_.findChild<QDockWidget*>("films");
  RenderQueue& queue = window_.TheQueue();
  queue.Add(window_.TheSession().Current(), folder_.File("no/such/folder/a.mp4"), {});
  films->show();
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_TRUE(films->isVisible()) << "it says why there is no film";
  Choose("Clear Finished Films");
  EXPECT_FALSE(films->isVisible());
}

TEST_F(Window, F1ShowsEveryShortcut) {
  Choose("Keyboard and Mouse");
  auto* dialog = window_.findChild<QDialog*>("shortcuts");
  ASSERT_NE(dialog, nullptr);
  const QString page = dialog->findChild<QTextBrowser*>()->toPlainText();
  for (const QAction* action : window_.findChildren<QAction*>()) {
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    if (keys.isEmpty() || action->parent() != &window_) continue;
    EXPECT_TRUE(page.contains(keys)) << keys.toStdString();
  }
  dialog->close();
}

TEST_F(Window, EveryControlHasANameForScreenReaders) {
  for (const QWidget* widget : window_.findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
    if (widget->objectName().startsWith("qt_") || widget->inherits("QScrollArea")) continue;
    const QAccessibleInterface* face =
        QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    ASSERT_NE(face, nullptr);
    EXPECT_FALSE(face->text(QAccessible::Name).isEmpty())
        << widget->metaObject()->className() << " " << widget->objectName().toStdString();
  }
}

TEST_F(Window, ColoursAreChosenAndKept) {
  const QPalette before = QApplication::palette();
  Choose("Dark");
  EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 100);
  EXPECT_EQ(QSettings().value("window/theme").toString(), "dark");
  Choose("Light");
  EXPECT_GT(QApplication::palette().color(QPalette::Window).lightness(), 200);
  Choose("System");
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), before.color(QPalette::Window));
}

TEST_F(Window, TheFilmDialogHasTheCommandsWordsForQuality) {
  RenderDialog dialog(KELTO_COMMAND, window_.TheSession().Current());
  QComboBox* quality = nullptr;
  for (QComboBox* box : dialog.findChildren<QComboBox*>()) {
    if (box->findData("best") >= 0) quality = box;
  }
  ASSERT_NE(quality, nullptr);
  EXPECT_EQ(quality->currentData(), "high");
  EXPECT_FALSE(dialog.Options().contains("--quality")) << "as the command has it";
  quality->setCurrentIndex(quality->findData("low"));
  EXPECT_EQ(dialog.Options().mid(dialog.Options().indexOf("--quality"), 2),
            QStringList({"--quality", "low"}));
}

TEST_F(Window, TheSoundIsDrawnOnceItHasBeenRead) {
  // A second of silence and a second of a square wave.
  constexpr int kRate = 8000;
  QFile wav(folder_.File("sound.wav"));
  ASSERT_TRUE(wav.open(QIODevice::WriteOnly));
  QDataStream out(&wav);
  out.setByteOrder(QDataStream::LittleEndian);
  out.writeRawData("RIFF", 4);
  out << quint32(36 + 4 * kRate);
  out.writeRawData("WAVEfmt ", 8);
  out << quint32(16) << quint16(1) << quint16(1) << quint32(kRate) << quint32(2 * kRate)
      << quint16(2) << quint16(16);
  out.writeRawData("data", 4);
  out << quint32(4 * kRate);
  for (int i = 0; i < 2 * kRate; ++i) {
    out << qint16(i < kRate ? 0 : i % 20 < 10 ? 16384 : -16384);
  }
  wav.close();
  window_.TheSession().Apply("Sound", [&](const Document& d) {
    return WithAudio(d, folder_.File("sound.wav").toStdString());
  });
  const auto sound = [&] { return window_.TheTimeline().Scene().sound; };
  ASSERT_TRUE(WaitFor([&] { return !sound().empty(); }));
  const double perSecond =
      static_cast<double>(sound().size()) / window_.TheTimeline().Scene().length;
  const auto peak = [&](double seconds) {
    return sound()[static_cast<size_t>(seconds * perSecond)];
  };
  EXPECT_NEAR(peak(0.5), 0.0F, 0.01F);
  EXPECT_NEAR(peak(1.5), 0.5F, 0.02F);
  EXPECT_EQ(peak(3.0), 0.0F) << "the film is longer than its sound";
  window_.TheSession().Undo();
  EXPECT_TRUE(sound().empty());
}

}  // namespace
}  // namespace kelto::editor
