// Films are made by processes of the command.
#include "editor/window/render_queue.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QLabel>

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

TEST(RenderDialog, ReturnMakesTheFilmAsItStands) {
  const PhotoFolder folder;
  RenderDialog dialog(KELTO_COMMAND, SmallFilm(folder));
  dialog.show();
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(dialog.Film(), folder.File("photo.mp4"));
  EXPECT_EQ(dialog.Options(), (QStringList{"--codec", "h264"}));
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
