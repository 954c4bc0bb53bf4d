// Films are made by processes of the command.
#include "editor/window/render_queue.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRgba64>
#include <vector>

#include "editor/document/settings.h"
#include "editor/window/render_dialog.h"
#include "host/files/start.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

Document SmallFilm(const PhotoFolder& folder) {
  qputenv("KELTO_MODULE", KELTO_MODULE);
  const Document document =
      NewDocument(folder.Photo().toStdString(), {1600, 1200}, folder.Project().toStdString());
  return WithLength(WithSize(document, 160, 90), 1.0);
}

TEST(RenderQueue, MakesTheFilmsOneAfterTheOther) {
  const PhotoFolder folder;
  const Document document = SmallFilm(folder);
  RenderQueue queue(KELTO_COMMAND);
  RenderJob* first = queue.Add(document, folder.File("a.y4m"), {});
  RenderJob* second = queue.Add(document, folder.File("b.y4m"), {"--size", "80x46"});
  EXPECT_EQ(first->TheState(), RenderJob::State::kRunning);
  EXPECT_EQ(second->TheState(), RenderJob::State::kWaiting);
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_EQ(first->TheState(), RenderJob::State::kDone) << first->Reason().toStdString();
  EXPECT_EQ(second->TheState(), RenderJob::State::kDone) << second->Reason().toStdString();
  EXPECT_EQ(first->Done(), 25);
  EXPECT_GT(QFileInfo(folder.File("a.y4m")).size(), QFileInfo(folder.File("b.y4m")).size());
}

TEST(RenderQueue, AFilmThatFailsSaysWhyAndTheNextIsMade) {
  const PhotoFolder folder;
  const Document document = SmallFilm(folder);
  RenderQueue queue(KELTO_COMMAND);
  RenderJob* failing = queue.Add(document, folder.File("no/such/folder/a.y4m"), {});
  RenderJob* next = queue.Add(document, folder.File("b.y4m"), {});
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_EQ(failing->TheState(), RenderJob::State::kFailed);
  EXPECT_TRUE(failing->Reason().contains("no/such/folder")) << failing->Reason().toStdString();
  EXPECT_EQ(next->TheState(), RenderJob::State::kDone);
}

TEST(RenderQueue, ACancelledFilmLeavesNoFile) {
  const PhotoFolder folder;
  RenderQueue queue(KELTO_COMMAND);
  RenderJob* job = queue.Add(WithLength(SmallFilm(folder), 3600.0), folder.File("long.y4m"), {});
  ASSERT_TRUE(WaitFor([&] { return job->Done() > 0 || job->Total() > 0; }));
  job->Cancel();
  EXPECT_EQ(job->TheState(), RenderJob::State::kCancelled);
  EXPECT_EQ(queue.Unfinished(), 0);
  EXPECT_FALSE(QFileInfo::exists(folder.File("long.y4m")));
}

QPushButton* ButtonThatSays(const QWidget& window, const QString& text) {
  for (auto* button : window.findChildren<QPushButton*>()) {
    if (button->text() == text) return button;
  }
  ADD_FAILURE() << "no button says " << text.toStdString();
  return nullptr;
}

TEST(RenderQueue, FinishedFilmsAreTakenOffTheList) {
  const PhotoFolder folder;
  const Document document = SmallFilm(folder);
  RenderQueue queue(KELTO_COMMAND);
  queue.show();
  QPushButton* clear = ButtonThatSays(queue, "Clear Finished");
  EXPECT_FALSE(clear->isEnabled()) << "there are none";
  queue.Add(document, folder.File("no/such/folder/a.y4m"), {});
  queue.Add(document, folder.File("b.y4m"), {});
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  RenderJob* going = queue.Add(WithLength(document, 3600.0), folder.File("long.y4m"), {});
  const auto rows = [&] { return queue.findChildren<QProgressBar*>().size(); };
  EXPECT_EQ(rows(), 3);
  clear->click();
  ASSERT_TRUE(WaitFor([&] { return rows() == 1; }));
  EXPECT_EQ(queue.Finished(), 0);
  EXPECT_EQ(queue.Unfinished(), 1);
  EXPECT_FALSE(clear->isEnabled());
  EXPECT_TRUE(QFileInfo::exists(folder.File("b.y4m"))) << "the film itself stays";
  // Those to come are films of their own.
  RenderJob* next = queue.Add(document, folder.File("c.y4m"), {});
  going->Cancel();
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_EQ(next->TheState(), RenderJob::State::kDone) << next->Reason().toStdString();
  EXPECT_EQ(next->Done(), 25);
}

TEST(RenderQueue, AFilmThatFailedIsTriedAgain) {
  const PhotoFolder folder;
  RenderQueue queue(KELTO_COMMAND);
  queue.show();
  RenderJob* job = queue.Add(SmallFilm(folder), folder.File("new/a.y4m"), {});
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  ASSERT_EQ(job->TheState(), RenderJob::State::kFailed);
  ASSERT_TRUE(QDir().mkpath(folder.File("new")));
  QPushButton* again = ButtonThatSays(queue, "Try Again");
  EXPECT_TRUE(again->isVisible());
  again->click();
  EXPECT_FALSE(again->isVisible());
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_EQ(job->TheState(), RenderJob::State::kDone) << job->Reason().toStdString();
  EXPECT_TRUE(QFileInfo::exists(folder.File("new/a.y4m")));
}

TEST(RenderQueue, ManyFilmsScroll) {
  const PhotoFolder folder;
  const Document document = SmallFilm(folder);
  RenderQueue queue("no-such-command");
  queue.show();
  for (int film = 0; film < 12; ++film) {
    queue.Add(document, folder.File(QString("%1.y4m").arg(film)), {});
  }
  EXPECT_LT(queue.minimumSizeHint().height(), 120) << "the window would grow beyond the screen";
}

TEST(RenderDialog, ReturnMakesTheFilmAsItStands) {
  const PhotoFolder folder;
  RenderDialog dialog(KELTO_COMMAND, SmallFilm(folder));
  dialog.show();
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(dialog.Film(), folder.File("photo.mp4"));
  EXPECT_EQ(dialog.Options(), (QStringList{"--codec", "h264"}));
}

/// The box of the dialog in which `data` can be chosen.
QComboBox* BoxWith(const RenderDialog& dialog, const QVariant& data) {
  for (QComboBox* box : dialog.findChildren<QComboBox*>()) {
    if (box->findData(data) >= 0) return box;
  }
  ADD_FAILURE() << data.toString().toStdString() << " cannot be chosen";
  return nullptr;
}

void Choose(QComboBox* box, const QVariant& data) {
  ASSERT_GE(box->findData(data), 0) << data.toString().toStdString();
  box->setCurrentIndex(box->findData(data));
  emit box->activated(box->currentIndex());
}

TEST(RenderDialog, OffersTheDepthsThatTheCodecHas) {
  const PhotoFolder folder;
  const RenderDialog dialog(KELTO_COMMAND, SmallFilm(folder));
  QComboBox* depth = BoxWith(dialog, 8);
  const auto depths = [&] {
    std::vector<int> all;
    for (int i = 0; i < depth->count(); ++i) all.push_back(depth->itemData(i).toInt());
    return all;
  };
  EXPECT_EQ(depths(), (std::vector{0, 8})) << "H.264";
  EXPECT_FALSE(depth->isEnabled());
  EXPECT_EQ(depth->currentData(), 8) << "not the photo's, which the film cannot have";
  Choose(BoxWith(dialog, "h265"), "h265");
  EXPECT_EQ(depths(), (std::vector{0, 8, 10}));
  EXPECT_FALSE(dialog.Options().contains("--depth")) << "as the command has it";
  Choose(depth, 10);
  EXPECT_EQ(dialog.Options().mid(dialog.Options().indexOf("--depth"), 2),
            QStringList({"--depth", "10"}));
  Choose(BoxWith(dialog, "h264"), "h264");
  EXPECT_FALSE(dialog.Options().contains("--depth")) << "which it cannot have";
  Choose(BoxWith(dialog, "-%04d.png"), "-%04d.png");
  EXPECT_EQ(depths(), (std::vector{0, 8, 16}));
}

TEST(RenderDialog, AFilmHasTheDepthThatWasChosen) {
  const PhotoFolder folder;
  QImage deep(320, 240, QImage::Format_RGBX64);
  for (int y = 0; y < deep.height(); ++y) {
    auto* row = reinterpret_cast<QRgba64*>(deep.scanLine(y));
    for (int x = 0; x < deep.width(); ++x) {
      row[x] = qRgba64(quint16(x * 200 + 7), quint16(y * 270 + 3), 40000, 65535);
    }
  }
  ASSERT_TRUE(deep.save(folder.Photo()));
  qputenv("KELTO_MODULE", KELTO_MODULE);
  const Document film = WithLength(WithSize(NewDocument(folder.Photo().toStdString(), {320, 240},
                                                        folder.Project().toStdString()),
                                            160, 90),
                                   0.04);
  RenderQueue queue(KELTO_COMMAND);
  const auto bitsOf = [&](int depth) {
    RenderDialog dialog(KELTO_COMMAND, film);
    Choose(BoxWith(dialog, "-%04d.png"), "-%04d.png");
    Choose(BoxWith(dialog, 16), depth);
    const QString name = folder.File(QString("bits%1-%04d.png").arg(depth));
    RenderJob* job = queue.Add(film, name, dialog.Options());
    EXPECT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
    EXPECT_EQ(job->TheState(), RenderJob::State::kDone) << job->Reason().toStdString();
    QFile png(folder.File(QString("bits%1-0000.png").arg(depth)));
    EXPECT_TRUE(png.open(QIODevice::ReadOnly));
    return int(png.read(25).at(24));  // as the header has it
  };
  EXPECT_EQ(bitsOf(0), 16) << "as the photo has it";
  EXPECT_EQ(bitsOf(8), 8);
  EXPECT_EQ(bitsOf(16), 16);
}

TEST(RenderDialog, SaysHowLargeTheFilmWillBe) {
  const PhotoFolder folder;
  const RenderDialog dialog(KELTO_COMMAND, SmallFilm(folder));
  const auto says = [&](const QString& text) {
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
      if (label->text().startsWith(text)) return true;
    }
    return false;
  };
  EXPECT_TRUE(says("Making a sample"));
  EXPECT_TRUE(WaitFor([&] { return says("About "); }));
}

TEST(RenderQueue, ACommandThatIsNotThereIsAFailure) {
  const PhotoFolder folder;
  RenderQueue queue(folder.File("no-such-program"));
  RenderJob* job = queue.Add(SmallFilm(folder), folder.File("a.y4m"), {});
  ASSERT_TRUE(WaitFor([&] { return queue.Unfinished() == 0; }));
  EXPECT_EQ(job->TheState(), RenderJob::State::kFailed);
  EXPECT_TRUE(job->Reason().contains("no-such-program"));
}

}  // namespace
}  // namespace kelto::editor
