// A slideshow in the window: pictures chosen, reordered, timed, and made into a film.
#include <gtest/gtest.h>

#include <QtWidgets>
#include <nlohmann/json.hpp>

#include "editor/window/main_window.h"
#include "editor/window/render_queue.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

class ShowWindow : public testing::Test {
 protected:
  ShowWindow() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    const QColor colours[] = {QColor(200, 30, 30), QColor(30, 200, 30), QColor(30, 30, 200)};
    for (int i = 0; i < 3; ++i) {
      QImage photo(320, 200, QImage::Format_RGB32);
      photo.fill(colours[i]);
      photo.save(folder_.filePath(QString("%1.png").arg(i + 1)));
    }
    window_.resize(1280, 800);
    window_.show();
    EXPECT_TRUE(window_.Open(folder_.path()));
    list_ = window_.TheStrip().findChild<QListWidget*>();
  }
  ~ShowWindow() override { window_.TheSession().Save(); }

  nlohmann::json Json() { return nlohmann::json::parse(window_.TheSession().Current().text); }
  /// The photos in order, "123".
  QString Order() {
    QString order;
    const nlohmann::json json = Json();
    for (const auto& picture : json["pictures"]) {
      order += QString::fromStdString(picture["image"]).left(1);
    }
    return order;
  }
  QPoint CentreOf(int picture) { return list_->visualItemRect(list_->item(picture)).center(); }
  void Drag(int from, const QPoint& to) {
    QWidget* strip = list_->viewport();
    QTest::mousePress(strip, Qt::LeftButton, {}, CentreOf(from));
    QTest::mouseMove(strip, CentreOf(from) + QPoint(20, 0));
    QTest::mouseMove(strip, to);
    QTest::mouseRelease(strip, Qt::LeftButton, {}, to);
  }

  QTemporaryDir folder_;
  MainWindow window_;
  QListWidget* list_ = nullptr;
};

TEST_F(ShowWindow, TitleAndCaptionAreTypedAndUndone) {
  const auto enter = [this](const QString& entry, const QString& words) {
    QTimer::singleShot(0, &window_, [words] {
      auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      dialog->setTextValue(words);
      dialog->accept();
    });
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&') == entry) return action->trigger();
    }
    FAIL() << entry.toStdString() << " is in no menu";
  };
  enter("Title of the Show…", "Summer");
  EXPECT_EQ(Json()["title"], "Summer");
  enter("Caption…", "A hill");
  EXPECT_EQ(Json()["pictures"][0]["caption"], "A hill");
  window_.TheSession().Undo();
  window_.TheSession().Undo();
  EXPECT_FALSE(Json().contains("title"));
  EXPECT_FALSE(Json()["pictures"][0].contains("caption"));
}

TEST_F(ShowWindow, AFolderIsAShowOfItsPhotos) {
  ASSERT_TRUE(window_.TheStrip().isVisible());
  ASSERT_EQ(list_->count(), 3);
  EXPECT_EQ(Order(), "123");
  EXPECT_TRUE(list_->item(0)->text().contains("1.png")) << list_->item(0)->text().toStdString();
  EXPECT_FALSE(QFile::exists(window_.TheSession().Path())) << "nothing is written unasked";
}

TEST_F(ShowWindow, AClickShowsThePictureInTheCanvas) {
  QTest::mouseClick(list_->viewport(), Qt::LeftButton, {}, CentreOf(1));
  EXPECT_EQ(window_.TheSession().Picture(), 1);
  EXPECT_TRUE(QString::fromStdString(window_.TheSession().Plan().photo).endsWith("2.png"));
  QTest::keyClick(list_, Qt::Key_Right);
  EXPECT_EQ(window_.TheSession().Picture(), 2);
  const nlohmann::json before = Json();
  window_.Select(0);  // the last view of this picture fills it
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  EXPECT_TRUE(window_.TheSession().Steps().CanUndo());
  EXPECT_EQ(Json()["pictures"][0], before["pictures"][0]);
  EXPECT_EQ(Json()["pictures"][1], before["pictures"][1]);
  EXPECT_NE(Json()["pictures"][2], before["pictures"][2]) << "the picture that is shown is changed";
}

TEST_F(ShowWindow, APictureIsDraggedBetweenOthers) {
  Drag(0, CentreOf(2) + QPoint(-40, 0));
  EXPECT_EQ(Order(), "213");
  EXPECT_EQ(window_.TheSession().Picture(), 1) << "it stays the one being edited";
  Drag(2, CentreOf(0) + QPoint(-40, 0));
  EXPECT_EQ(Order(), "321");
  window_.TheSession().Undo();
  EXPECT_EQ(Order(), "213");
  window_.TheSession().Undo();
  EXPECT_EQ(Order(), "123");
}

TEST_F(ShowWindow, ADragThatEndsWhereItBeganOrIsGivenUpChangesNothing) {
  Drag(1, CentreOf(1) + QPoint(12, 0));
  EXPECT_EQ(Order(), "123");
  QTest::mousePress(list_->viewport(), Qt::LeftButton, {}, CentreOf(0));
  QTest::mouseMove(list_->viewport(), CentreOf(2));
  QTest::keyClick(list_, Qt::Key_Escape);
  QTest::mouseRelease(list_->viewport(), Qt::LeftButton, {}, CentreOf(2));
  EXPECT_EQ(Order(), "123");
  EXPECT_FALSE(window_.TheSession().Steps().CanUndo());
}

TEST_F(ShowWindow, KeysMoveAndRemovePictures) {
  list_->setFocus();
  QTest::keyClick(list_, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(Order(), "213");
  QTest::keyClick(list_, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Order(), "123");
  QTest::keyClick(list_, Qt::Key_Delete);
  EXPECT_EQ(Order(), "23");
  QTest::keyClick(list_, Qt::Key_Delete);
  QTest::keyClick(list_, Qt::Key_Delete);
  EXPECT_EQ(Order(), "3") << "a show keeps its last picture";
}

TEST_F(ShowWindow, TimesAreTypedBesideTheStrip) {
  const auto boxes = window_.TheStrip().findChildren<QDoubleSpinBox*>();
  ASSERT_EQ(boxes.size(), 2);
  window_.TheSession().SelectPicture(1);
  boxes[0]->setValue(7.5);
  boxes[1]->setValue(2.0);
  EXPECT_EQ(Json()["pictures"][1]["each"], 7.5);
  EXPECT_EQ(Json()["pictures"][1]["fade"], 2.0);
  EXPECT_TRUE(list_->item(1)->text().contains("7.5")) << list_->item(1)->text().toStdString();
  window_.TheSession().SelectPicture(2);
  EXPECT_FALSE(boxes[1]->isEnabled()) << "the last picture fades into nothing";
}

TEST_F(ShowWindow, ThumbnailsComeFromAnotherProcess) {
  const auto shade = [&](int picture) {
    return list_->item(picture)->icon().pixmap(Strip::kThumbnail).toImage().pixelColor(80, 50);
  };
  ASSERT_TRUE(WaitFor([&] { return shade(2).blue() > 150 && shade(0).red() > 150; }));
  EXPECT_GT(shade(1).green(), 150);
}

TEST_F(ShowWindow, TheFilmHasMostOfItsSideOnASmallScreen) {
  window_.resize(1280, 720);
  auto* film = window_.findChild<PreviewView*>();
  auto* side = qobject_cast<QSplitter*>(film->parentWidget());
  ASSERT_NE(side, nullptr);
  EXPECT_TRUE(WaitFor([&] { return film->height() * 10 >= side->height() * 6; }))
      << film->height() << " of " << side->height();
}

TEST_F(ShowWindow, APortraitFillsItsThumbnail) {
  QImage portrait(200, 600, QImage::Format_RGB32);
  portrait.fill(Qt::white);
  ASSERT_TRUE(portrait.save(folder_.filePath("portrait.png")));
  ASSERT_TRUE(
      window_.Open(QStringList{folder_.filePath("portrait.png"), folder_.filePath("2.png")}));
  const auto corner = [&] {
    return list_->item(0)->icon().pixmap(Strip::kThumbnail).toImage().pixelColor(2, 2);
  };
  EXPECT_TRUE(WaitFor([&] { return corner().red() > 240 && corner().green() > 240; }));
}

TEST_F(ShowWindow, SavedItIsOpenedAgainAsItWas) {
  window_.TheSession().SelectPicture(2);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  ASSERT_TRUE(window_.TheSession().Save());
  const std::string text = window_.TheSession().Current().text;
  MainWindow again({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE});
  ASSERT_TRUE(again.Open(window_.TheSession().Path()));
  EXPECT_EQ(again.TheSession().Current().text, text);
  EXPECT_EQ(again.TheSession().Pictures().size(), 3u);
}

TEST_F(ShowWindow, TheQueueMakesTheWholeShow) {
  RenderJob* job =
      window_.TheQueue().Add(window_.TheSession().Current(), folder_.filePath("show.y4m"),
                             {"--size", "96x54", "--each", "0.2", "--fade", "0.04"});
  ASSERT_TRUE(WaitFor([&] { return window_.TheQueue().Unfinished() == 0; }));
  EXPECT_EQ(job->TheState(), RenderJob::State::kDone) << job->Reason().toStdString();
  EXPECT_EQ(job->Total(), 3 * 5 - 2);
  EXPECT_TRUE(window_.CommandLine().startsWith("kelto slideshow "));
}

TEST_F(ShowWindow, OnePhotoHasNoStrip) {
  ASSERT_TRUE(window_.Open(folder_.filePath("1.png")));
  EXPECT_FALSE(window_.TheStrip().isVisible());
  ASSERT_TRUE(window_.Open(QStringList{folder_.filePath("3.png"), folder_.filePath("1.png")}));
  EXPECT_TRUE(window_.TheStrip().isVisible());
  EXPECT_EQ(Order(), "31");
}

}  // namespace
}  // namespace kelto::editor
