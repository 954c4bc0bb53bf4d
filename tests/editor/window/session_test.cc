// The project being edited: opened, kept, saved, changed by others.
#include "editor/window/session.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QProgressDialog>
#include <QSignalSpy>
#include <QTimer>

#include "editor/document/recovery.h"
#include "editor/document/settings.h"
#include "editor/document/tour_changes.h"
#include "editor/preview/photo_size.h"
#include "editor/window/sizes_dialog.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

QByteArray BytesOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

PixelSize FindSize(const std::string& photo) {
  return FindPhotoSize(KELTO_PREVIEW, KELTO_MODULE, photo);
}

/// A change as a drag makes them.
void Drag(Session& session, int64_t id, double left, bool finished) {
  session.Apply("Move View",
                [&](const Document& d) {
                  return WithPart(d, 1, {left, 100, 640, 360});
                },
                {id, finished});
}

TEST(Session, APhotoIsANewProjectBesideIt) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  EXPECT_EQ(session.Path(), folder.Project());
  EXPECT_EQ(session.Plan().views.size(), 2u);
  EXPECT_FALSE(QFile::exists(folder.Project())) << "nothing is written before it is saved";
  ASSERT_TRUE(session.Save());
  EXPECT_FALSE(session.Modified());
  Session again(FindSize);
  ASSERT_TRUE(again.Open(folder.Project()));
  EXPECT_EQ(again.Current().text, session.Current().text);
}

TEST(Session, WhatCannotBeOpenedLeavesWhatIsOpen) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  QSignalSpy failed(&session, &Session::Failed);
  EXPECT_FALSE(session.Open(folder.File("missing.json")));
  ASSERT_EQ(failed.size(), 1);
  EXPECT_TRUE(failed[0][0].toString().startsWith(folder.File("missing.json") + ": "))
      << failed[0][0].toString().toStdString();
  EXPECT_EQ(session.Path(), folder.Project());
}

TEST(Session, KnowsThePhotosSize) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  EXPECT_EQ(session.Photo(), (PixelSize{1600, 1200}));
}

TEST(Session, APhotoThatIsNoneIsRefusedInTheCommandsWords) {
  const PhotoFolder folder;
  QFile text(folder.File("text.jpg"));
  ASSERT_TRUE(text.open(QIODevice::WriteOnly));
  text.write("no photograph");
  text.close();
  Session session(FindSize);
  QSignalSpy failed(&session, &Session::Failed);
  EXPECT_FALSE(session.Open(text.fileName()));
  ASSERT_EQ(failed.size(), 1);
  EXPECT_EQ(failed[0][0].toString(),
            text.fileName() + ": cannot be read as a picture: not a picture in a known format");
}

/// A decoder with a fault, preloaded into whatever this process starts.
class FaultyDecoder {
 public:
  FaultyDecoder() {
    qputenv("LD_PRELOAD", KELTO_MISBEHAVING_DECODER);
    // The sanitizers want to be loaded first, and read a list at the end that the sandbox hides.
    Set("ASAN_OPTIONS", qgetenv("ASAN_OPTIONS") + ":verify_asan_link_order=0:detect_leaks=0");
  }
  ~FaultyDecoder() {
    for (const std::string& name : set_) qunsetenv(name.c_str());
  }
  void Set(const char* name, const QByteArray& value) {
    qputenv(name, value);
    set_.push_back(name);
  }

 private:
  std::vector<std::string> set_{"LD_PRELOAD"};
};

TEST(Session, AFaultInADecoderLeavesTheEditorAsItIs) {
  const PhotoFolder folder;
  const QString photo = folder.File("photo.jpg");
  ASSERT_TRUE(QImage(folder.Photo()).save(photo));
  FaultyDecoder faulty;
  faulty.Set("KELTO_TEST_PRINTS_IN", "jpeg_read_header");
  faulty.Set("KELTO_TEST_PRINTS", "corrupt marker\n");
  faulty.Set("KELTO_TEST_ABORTS", "1");
  Session session(FindSize);
  QSignalSpy failed(&session, &Session::Failed);
  EXPECT_FALSE(session.Open(photo));
  ASSERT_EQ(failed.size(), 1);
  EXPECT_EQ(failed[0][0].toString(), photo + ": the process that reads it stopped unexpectedly");
}

/// kelto-preview, with a file that counts how often it was started.
class CountedPreview {
 public:
  /// `before` is what a shell does ahead of it.
  CountedPreview(const PhotoFolder& folder, const QString& before)
      : script_(folder.File("preview.sh")), starts_(folder.File("starts")) {
    QFile script(script_);
    EXPECT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(QString("#!/bin/sh\necho >>'%1'\n%2\nexec '%3' \"$@\"\n")
                     .arg(starts_, before, KELTO_PREVIEW)
                     .toUtf8());
    script.close();
    EXPECT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
  }
  qint64 Starts() const { return QFileInfo(starts_).size(); }
  FoundSizes Find(const std::vector<std::string>& photos, const SizesProgress& progress = {}) {
    return FindPhotoSizes(script_, KELTO_MODULE, photos, progress);
  }

 private:
  QString script_, starts_;
};

TEST(Session, OneProcessReadsTheSizesOfAFolder) {
  const PhotoFolder folder;
  QStringList photos;
  for (int i = 0; i < 12; ++i) {
    photos << folder.File(QString("%1.png").arg(i, 2, 10, QChar('0')));
    ASSERT_TRUE(QImage(20 + i, 16, QImage::Format_RGB32).save(photos.last()));
  }
  CountedPreview preview(folder, "");
  Session session([&](const std::string& photo) { return preview.Find({photo})[photo].size; },
                  [&](const std::vector<std::string>& some) { return preview.Find(some); });
  ASSERT_TRUE(session.Open(photos));
  EXPECT_EQ(session.Pictures().size(), 12u);
  EXPECT_EQ(preview.Starts(), 1);
  EXPECT_EQ(session.SizeOf(photos[5].toStdString()).width, 25);
}

TEST(Session, APhotoThatEndsTheProcessLeavesTheOthersTheirSizes) {
  const PhotoFolder folder;
  const std::string good = folder.Photo().toStdString(), bad = folder.File("a.jpg").toStdString(),
                    missing = folder.File("missing.png").toStdString();
  ASSERT_TRUE(QImage(folder.Photo()).save(QString::fromStdString(bad)));
  FaultyDecoder faulty;
  faulty.Set("KELTO_TEST_PRINTS_IN", "jpeg_read_header");
  faulty.Set("KELTO_TEST_PRINTS", "corrupt marker\n");
  faulty.Set("KELTO_TEST_ABORTS", "1");
  FoundSizes found = FindPhotoSizes(KELTO_PREVIEW, KELTO_MODULE, {missing, bad, good});
  EXPECT_NE(found[missing].fault.find(missing), std::string::npos) << found[missing].fault;
  EXPECT_EQ(found[bad].fault, bad + ": the process that reads it stopped unexpectedly");
  EXPECT_EQ(found[good].fault, "");
  EXPECT_EQ(found[good].size.width, 1600);
}

TEST(Session, TheWindowGoesOnWhilePhotosAreLookedAtWhichCanBeCancelled) {
  const PhotoFolder folder;
  CountedPreview slow(folder, "exec sleep 60");
  int turns = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
    ++turns;
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (auto* dialog = qobject_cast<QProgressDialog*>(top)) dialog->cancel();
    }
  });
  timer.start(20);
  const std::string photo = folder.Photo().toStdString();
  FoundSizes found = FindWithDialog(
      {photo},
      [&](const std::vector<std::string>& some, const SizesProgress& progress) {
        return slow.Find(some, progress);
      },
      nullptr);
  EXPECT_GE(turns, 3);
  EXPECT_EQ(found[photo].fault, photo + ": not read; reading was cancelled");
}

TEST(Session, ADecoderThatAFileHasTakenOverReachesNothingElse) {
  const PhotoFolder folder, films;
  const QString photo = folder.File("photo.jpg"), secret = folder.File("secret");
  ASSERT_TRUE(QImage(folder.Photo()).save(photo));
  ASSERT_TRUE(QFile::copy(folder.Photo(), secret));
  QFile report(films.File("report"));
  ASSERT_TRUE(report.open(QIODevice::ReadWrite));
  FaultyDecoder faulty;
  // Qt's own files do not pass to other processes.
  const int passed = dup(report.handle());
  faulty.Set("KELTO_TEST_REPORT", QByteArray::number(passed));
  faulty.Set("KELTO_TEST_FOLDER", QFileInfo(photo).path().toUtf8());
  faulty.Set("KELTO_TEST_FILMS", QFileInfo(report).path().toUtf8());
  faulty.Set("KELTO_TEST_PORT", "1");
  Session session(FindSize);
  EXPECT_TRUE(session.Open(photo));
  close(passed);
  const QByteArray said = BytesOf(report.fileName());
  EXPECT_GE(said.count('\n'), 11) << "the decoder was not tried";
  for (const QByteArray& line : said.split('\n')) {
    EXPECT_FALSE(line.startsWith("0 ")) << line.toStdString();
  }
  EXPECT_FALSE(QFile::exists(folder.File("planted")));
}

TEST(Session, ADragIsOneStepAndKeptWhenItEnds) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  const Document before = session.Current();
  for (int i = 0; i < 10; ++i) Drag(session, 5, 100.0 + i, i == 9);
  session.Settle();
  const auto kept = FindUnsaved(session.Current().path);
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->document, session.Current());
  session.Undo();
  EXPECT_EQ(session.Current(), before);
  EXPECT_FALSE(session.Steps().CanUndo());
}

TEST(Session, AChangeThatCannotBeChangesNothing) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  const Document before = session.Current();
  QSignalSpy failed(&session, &Session::Failed);
  session.Apply("Size", [](const Document& d) { return WithSize(d, 0, 0); });
  EXPECT_EQ(failed.size(), 1);
  EXPECT_EQ(session.Current(), before);
}

/// Finds sizes until it is told that whoever looks on has cancelled.
class SizesOrNone {
 public:
  PhotoSizes One() {
    return [this](const std::string& photo) {
      ++asked_;
      return FindSize(photo);
    };
  }
  Session::SeveralSizes Several() {
    return [this](const std::vector<std::string>& photos) {
      FoundSizes found;
      for (const std::string& photo : photos) {
        if (cancelled) {
          found[photo].fault = photo + ": cancelled";
        } else {
          found[photo].size = FindSize(photo);
        }
      }
      return found;
    };
  }
  int Asked() const { return asked_; }
  bool cancelled = false;

 private:
  int asked_ = 0;
};

TEST(Session, AFolderThatIsCancelledLeavesWhatIsOpenWhole) {
  const PhotoFolder folder;
  SizesOrNone sizes;
  Session session(sizes.One(), sizes.Several());
  ASSERT_TRUE(session.Open(folder.Photo()));
  session.Apply("Remove Stop", [](const Document& d) { return WithoutStop(d, 1); });
  sizes.cancelled = true;
  const int asked = sizes.Asked();
  ASSERT_FALSE(session.Open(folder.File("")));
  session.Undo();
  EXPECT_EQ(sizes.Asked(), asked) << "its size is known";
  EXPECT_EQ(PlanOf(session.Current()).views.size(), 2u);
  EXPECT_EQ(session.Plan().views.size(), 2u);
  sizes.cancelled = false;
  EXPECT_TRUE(session.Open(folder.File(""))) << "as it is looked at again";
}

TEST(Session, UnsavedWorkIsTakenUpAgainAndGoneOnceSaved) {
  const PhotoFolder folder;
  std::string dragged;
  {
    Session session(FindSize);
    ASSERT_TRUE(session.Open(folder.Photo()));
    ASSERT_TRUE(session.Save());
    Drag(session, 1, 321.0, false);  // and the program ends, in the middle of the drag
    dragged = session.Current().text;
  }
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Project()));
  ASSERT_TRUE(session.CanRecover());
  session.Recover();
  EXPECT_EQ(session.Current().text, dragged);
  EXPECT_TRUE(session.Modified());
  ASSERT_TRUE(session.Save());
  EXPECT_FALSE(session.CanRecover());
  EXPECT_FALSE(QFile::exists(QString::fromStdString(RecoveryPath(folder.Project().toStdString()))));
}

TEST(Session, SavedElsewhereItShowsTheSamePhoto) {
  const PhotoFolder folder;
  const PhotoFolder other;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  ASSERT_TRUE(session.SaveAs(other.File("copy.json")));
  EXPECT_EQ(session.Path(), other.File("copy.json"));
  EXPECT_EQ(session.Plan().photo, folder.Photo().toStdString());
  EXPECT_FALSE(session.Modified());
}

TEST(Session, SaysThatTheFileHasChangedAndReadsItAgain) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  ASSERT_TRUE(session.Save());
  QSignalSpy changed(&session, &Session::FileChanged);
  const Document other = WithSize(session.Current(), 640, 360);
  WriteDocument(other);
  ASSERT_TRUE(WaitFor([&] { return !changed.isEmpty(); }));
  session.Reload();
  EXPECT_EQ(session.Current().text, other.text);
  EXPECT_FALSE(session.Modified());
  session.Undo();
  EXPECT_NE(session.Current().text, other.text) << "what was there before can be brought back";
}

TEST(Session, ItsOwnSavesAreNoChangesOfOthers) {
  const PhotoFolder folder;
  Session session(FindSize);
  ASSERT_TRUE(session.Open(folder.Photo()));
  ASSERT_TRUE(session.Save());
  QSignalSpy changed(&session, &Session::FileChanged);
  Drag(session, 1, 200.0, true);
  ASSERT_TRUE(session.Save());
  QTest::qWait(300);
  EXPECT_EQ(changed.size(), 0);
  EXPECT_EQ(BytesOf(folder.Project()).toStdString(), session.Current().text);
}

}  // namespace
}  // namespace kelto::editor
