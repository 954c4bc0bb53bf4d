#include "editor/widgets/canvas.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <cmath>
#include <map>
#include <vector>

#include "tests/editor/rules/limits_of_tests.h"
#include "tests/editor/support/widgets.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;

/// A photo of 4000 x 3000 pixels on a canvas where a photo pixel takes a quarter of a pixel, from
/// (24, 24) on.
class CanvasWidget : public WidgetTest {
 protected:
  CanvasWidget() {
    scene_.limits = LandscapeLimits();
    scene_.views = {ViewOf(0.0, 0.0, 4000.0), ViewOf(1000.0, 1000.0, 800.0)};
    canvas_.SetScene(scene_);
    QImage photo(400, 300, QImage::Format_RGB32);
    photo.fill(Qt::gray);
    canvas_.SetPhoto(photo);
    Show(canvas_, {1048, 798});
    QObject::connect(&canvas_, &Canvas::ViewChanged, &canvas_,
                     [this](int view, const PhotoRect& part, Gesture gesture) {
                       changes_.push_back({view, part, gesture});
                       scene_.views[view] = part;
                       canvas_.SetScene(scene_);
                     });
    QObject::connect(&canvas_, &Canvas::ViewSelected, &canvas_, [this](int view) {
      scene_.selected = view;
      canvas_.SetScene(scene_);
    });
    QObject::connect(&canvas_, &Canvas::ViewAdded, &canvas_,
                     [this](const PhotoRect& part) { added_.push_back(part); });
    QObject::connect(&canvas_, &Canvas::ViewRemoved, &canvas_,
                     [this](int view) { removed_.push_back(view); });
    QObject::connect(&canvas_, &Canvas::PlayAsked, &canvas_, [this] { ++plays_; });
  }

  static QPoint At(double x, double y) {
    return {static_cast<int>(24 + x / 4), static_cast<int>(24 + y / 4)};
  }
  void ExpectView(int view, const PhotoRect& wanted, double within = 1e-6) {
    EXPECT_NEAR(scene_.views[view].x, wanted.x, within);
    EXPECT_NEAR(scene_.views[view].y, wanted.y, within);
    EXPECT_NEAR(scene_.views[view].width, wanted.width, within);
  }
  /// All changes are of one gesture, of which the last one alone is finished.
  void ExpectOneGesture() {
    ASSERT_FALSE(changes_.empty());
    for (const Change& change : changes_) {
      EXPECT_EQ(change.gesture.id, changes_.front().gesture.id);
      EXPECT_EQ(change.gesture.finished, &change == &changes_.back());
    }
  }

  struct Change {
    int view;
    PhotoRect part;
    Gesture gesture;
  };
  CanvasScene scene_;
  Canvas canvas_;
  std::vector<Change> changes_;
  std::vector<PhotoRect> added_;
  std::vector<int> removed_;
  int plays_ = 0;
};

TEST_F(CanvasWidget, MovesTheViewThatIsDragged) {
  Drag(canvas_, At(1400, 1200), At(1800, 1400));
  Release(canvas_, At(1800, 1400));
  ExpectView(1, ViewOf(1400.0, 1200.0, 800.0));
  EXPECT_EQ(scene_.selected, 1);
  ExpectOneGesture();
}

TEST_F(CanvasWidget, AsksForDetailWhereThePictureOfThePhotoHasTooFewPixels) {
  int asked = 0;
  QObject::connect(&canvas_, &Canvas::DetailWanted, &canvas_, [&] { ++asked; });
  QImage picture(1000, 750, QImage::Format_RGB32);
  picture.fill(Qt::gray);
  canvas_.SetPhoto(picture);
  canvas_.grab();
  EXPECT_EQ(asked, 0) << "the whole photo is shown in as many pixels";
  canvas_.ZoomIn();
  canvas_.grab();
  EXPECT_EQ(asked, 1);
  canvas_.SetPhoto(picture.scaled(4000, 3000));
  canvas_.ShowPixels();
  canvas_.grab();
  EXPECT_EQ(asked, 1) << "there is no more";
}

TEST_F(CanvasWidget, ADragWithoutMovingSelectsAndChangesNothing) {
  QTest::mouseClick(&canvas_, Qt::LeftButton, Qt::NoModifier, At(1400, 1200));
  EXPECT_EQ(scene_.selected, 1);
  EXPECT_TRUE(changes_.empty());
  QTest::mouseClick(&canvas_, Qt::LeftButton, Qt::NoModifier, At(2000, 2900));
  EXPECT_EQ(scene_.selected, -1) << "beside all views";
}

TEST_F(CanvasWidget, ResizesAboutTheOppositeCornerAndWithAltAboutTheMiddle) {
  Drag(canvas_, At(1800, 1448), At(2120, 1628), Qt::ControlModifier);
  Release(canvas_, At(2120, 1628));
  EXPECT_NEAR(scene_.views[1].x, 1000.0, 1e-6);
  EXPECT_NEAR(scene_.views[1].width, 1120.0, 1.0);
  const double right = scene_.views[1].Right(), bottom = scene_.views[1].Bottom();
  const PhotoRect before = scene_.views[1];
  Drag(canvas_, At(right, bottom), At(right - 160, bottom - 90),
       Qt::ControlModifier | Qt::AltModifier);
  Release(canvas_, At(right - 160, bottom - 90));
  EXPECT_NEAR(scene_.views[1].width, before.width - 320.0, 8.0);
  EXPECT_NEAR(scene_.views[1].CentreX(), before.CentreX(), 1e-6);
}

TEST_F(CanvasWidget, ShiftLocksAnAxis) {
  Drag(canvas_, At(1400, 1200), At(1800, 1280), Qt::ShiftModifier);
  Release(canvas_, At(1800, 1280));
  ExpectView(1, ViewOf(1400.0, 1000.0, 800.0));
}

TEST_F(CanvasWidget, SnapsToThePhotosEdgesUnlessCtrl) {
  Drag(canvas_, At(1400, 1200), At(416, 1200));
  Release(canvas_, At(416, 1200));
  EXPECT_EQ(scene_.views[1].x, 0.0);
  Drag(canvas_, At(400, 1200), At(420, 1200), Qt::ControlModifier);
  Release(canvas_, At(420, 1200));
  EXPECT_NEAR(scene_.views[1].x, 20.0, 1e-6);
}

TEST_F(CanvasWidget, AViewNeverLeavesThePhotoUnlessBeyondTheEdges) {
  Drag(canvas_, At(1400, 1200), At(-3000, 9000));
  Release(canvas_, At(-3000, 9000));
  ExpectView(1, ViewOf(0.0, 3000.0 - 450.0, 800.0));
  scene_.limits.beyondEdges = true;
  canvas_.SetScene(scene_);
  Drag(canvas_, At(400, 2800), At(200, 2800), Qt::ControlModifier);
  Release(canvas_, At(200, 2800));
  ExpectView(1, ViewOf(-200.0, 2550.0, 800.0));
}

TEST_F(CanvasWidget, EscapeEndsADragAsItBegan) {
  Drag(canvas_, At(1400, 1200), At(1800, 1400));
  QTest::keyClick(&canvas_, Qt::Key_Escape);
  Release(canvas_, At(1800, 1400));
  ExpectView(1, ViewOf(1000.0, 1000.0, 800.0));
  ExpectOneGesture();
}

TEST_F(CanvasWidget, ADragKeepsItsViewWhateverIsSetMeanwhile) {
  Drag(canvas_, At(1400, 1200), At(1800, 1400));
  CanvasScene late = scene_;
  late.views[1] = ViewOf(1000.0, 1000.0, 800.0);
  canvas_.SetScene(late);
  Release(canvas_, At(1800, 1400));
  EXPECT_NEAR(changes_.back().part.x, 1400.0, 1e-6);
  ExpectOneGesture();
}

TEST_F(CanvasWidget, TabLeavesADragAlone) {
  Drag(canvas_, At(1400, 1200), At(1800, 1400));
  QTest::keyClick(&canvas_, Qt::Key_Tab);
  QTest::keyClick(&canvas_, Qt::Key_Backtab);
  Release(canvas_, At(1800, 1400));
  EXPECT_EQ(scene_.selected, 1);
  ExpectOneGesture();
}

TEST_F(CanvasWidget, ADragEndsWhereItsViewGoes) {
  Drag(canvas_, At(1400, 1200), At(1800, 1400));
  scene_.views.pop_back();
  canvas_.SetScene(scene_);
  const size_t before = changes_.size();
  Release(canvas_, At(1800, 1400));
  EXPECT_EQ(changes_.size(), before);
}

TEST_F(CanvasWidget, TheWheelZoomsTheViewBelowIt) {
  Turn(canvas_, At(1400, 1225), 2);
  EXPECT_EQ(scene_.selected, 1);
  EXPECT_NEAR(scene_.views[1].width, 800.0 / 1.12 / 1.12, 1e-6);
  EXPECT_NEAR((1400.0 - scene_.views[1].x) / scene_.views[1].width, 0.5, 0.01)
      << "what is below the pointer stays";
  Turn(canvas_, At(1400, 1225), -1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return changes_.back().gesture.finished; }, 60000));
  ExpectOneGesture();
}

TEST_F(CanvasWidget, TheWheelWithCtrlZoomsTheCanvas) {
  Turn(canvas_, At(1400, 1200), 3, Qt::ControlModifier);
  EXPECT_TRUE(changes_.empty());
  // A drag of as many canvas pixels is fewer of the photo's now.
  Drag(canvas_, At(1400, 1200), At(1400, 1200) + QPoint(100, 0), Qt::ControlModifier);
  Release(canvas_, At(1400, 1200) + QPoint(100, 0));
  EXPECT_NEAR(scene_.views[1].x, 1000.0 + 400.0 / std::pow(1.12, 3), 1e-6);
}

TEST_F(CanvasWidget, MiddleButtonAndSpaceMoveThePhoto) {
  Turn(canvas_, At(2000, 1500), 8, Qt::ControlModifier);
  const double scale = 0.25 * std::pow(1.12, 8);
  Drag(canvas_, {500, 300}, {560, 300}, Qt::NoModifier, Qt::MiddleButton);
  Release(canvas_, {560, 300}, Qt::MiddleButton);
  QTest::keyPress(&canvas_, Qt::Key_Space);
  Drag(canvas_, {500, 300}, {540, 300});
  Release(canvas_, {540, 300});
  QTest::keyRelease(&canvas_, Qt::Key_Space);
  EXPECT_TRUE(changes_.empty());
  EXPECT_EQ(plays_, 0);
  // View 1 is found where the photo has gone.
  const QPoint middle(static_cast<int>(524 + 100 + (1400.0 - 2000.0) * scale),
                      static_cast<int>(399 + (1225.0 - 1500.0) * scale));
  QTest::mouseClick(&canvas_, Qt::LeftButton, Qt::NoModifier, middle);
  EXPECT_EQ(scene_.selected, 1);
}

TEST_F(CanvasWidget, ATapOnSpacePlays) {
  QTest::keyClick(&canvas_, Qt::Key_Space);
  EXPECT_EQ(plays_, 1);
}

TEST_F(CanvasWidget, ArrowsMoveByAPixelAndWithShiftByTen) {
  scene_.selected = 1;
  canvas_.SetScene(scene_);
  QTest::keyPress(&canvas_, Qt::Key_Right);
  QTest::keyPress(&canvas_, Qt::Key_Right);
  QTest::keyPress(&canvas_, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyRelease(&canvas_, Qt::Key_Down);
  ExpectView(1, ViewOf(1002.0, 1010.0, 800.0));
  ExpectOneGesture();
}

TEST_F(CanvasWidget, PlusAndMinusZoomTheSelectedView) {
  scene_.selected = 1;
  canvas_.SetScene(scene_);
  QTest::keyClick(&canvas_, Qt::Key_Plus);
  EXPECT_LT(scene_.views[1].width, 800.0);
  EXPECT_NEAR(scene_.views[1].CentreX(), 1400.0, 1e-6);
  QTest::keyClick(&canvas_, Qt::Key_Minus);
  ExpectView(1, ViewOf(1000.0, 1000.0, 800.0));
}

TEST_F(CanvasWidget, TabGoesFromViewToViewAndThenOn) {
  QTest::keyClick(&canvas_, Qt::Key_Tab);
  EXPECT_EQ(scene_.selected, 0);
  QTest::keyClick(&canvas_, Qt::Key_Tab);
  EXPECT_EQ(scene_.selected, 1);
  QTest::keyClick(&canvas_, Qt::Key_Backtab);
  EXPECT_EQ(scene_.selected, 0);
}

TEST_F(CanvasWidget, ADoubleClickAddsAStop) {
  QTest::mouseDClick(&canvas_, Qt::LeftButton, Qt::NoModifier, At(3000, 1600));
  ASSERT_EQ(added_.size(), 1u);
  EXPECT_NEAR(added_[0].CentreX(), 3000.0, 4.0);
  EXPECT_NEAR(added_[0].width, 2000.0, 1e-6) << "half as wide as the view it is in";
  EXPECT_TRUE(changes_.empty());
  QTest::mouseDClick(&canvas_, Qt::LeftButton, Qt::NoModifier, {5, 5});
  EXPECT_EQ(added_.size(), 1u) << "beside the photo";
}

TEST_F(CanvasWidget, DeleteRemovesTheSelectedView) {
  QTest::keyClick(&canvas_, Qt::Key_Delete);
  EXPECT_TRUE(removed_.empty());
  scene_.selected = 1;
  canvas_.SetScene(scene_);
  QTest::keyClick(&canvas_, Qt::Key_Delete);
  EXPECT_EQ(removed_, std::vector<int>{1});
}

TEST_F(CanvasWidget, ShowsViewsWayAndEnlargement) {
  const auto colours = [&] {
    std::map<QRgb, int> found;
    const QImage image = canvas_.grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) ++found[image.pixel(x, y)];
    }
    return found;
  };
  auto seen = colours();
  EXPECT_GT(seen[qRgb(0x2f, 0xa8, 0x66)], 50) << "the start";
  EXPECT_GT(seen[qRgb(0xe8, 0x6a, 0x33)], 50) << "the end";
  EXPECT_GT(seen[qRgb(0xf2, 0xb1, 0x34)], 50) << "the end enlarges the photo's pixels";
  scene_.views[1] = ViewOf(1000.0, 500.0, 1960.0);
  canvas_.SetScene(scene_);
  seen = colours();
  EXPECT_EQ(seen[qRgb(0xf2, 0xb1, 0x34)], 0);
}

TEST_F(CanvasWidget, SpeaksToScreenReaders) {
  EXPECT_FALSE(canvas_.accessibleName().isEmpty());
  QTest::mouseClick(&canvas_, Qt::LeftButton, Qt::NoModifier, At(1400, 1200));
  EXPECT_EQ(canvas_.accessibleDescription(), "View 2 of 2, 800 pixels wide");
}

TEST_F(CanvasWidget, FivehundredStopsAreDrawnAndDragged) {
  for (int stop = 2; stop < 500; ++stop) {
    scene_.views.push_back(ViewOf(stop * 6.0, stop * 4.0, 300.0));
  }
  canvas_.SetScene(scene_);
  canvas_.grab();
  Drag(canvas_, At(3100, 2040), At(3100, 1800));
  Release(canvas_, At(3100, 1800));
  ExpectOneGesture();
}

TEST_F(CanvasWidget, IsAListOfItsViewsForScreenReaders) {
  QAccessibleInterface* canvas = QAccessible::queryAccessibleInterface(&canvas_);
  ASSERT_NE(canvas, nullptr);
  EXPECT_EQ(canvas->role(), QAccessible::List);
  ASSERT_EQ(canvas->childCount(), 2);
  QAccessibleInterface* view = canvas->child(1);
  EXPECT_EQ(view->text(QAccessible::Name), "View 2 of 2, 800 pixels wide");
  const QPoint corner = canvas_.mapToGlobal(At(1000.0, 1000.0));
  EXPECT_LE((view->rect().topLeft() - corner).manhattanLength(), 2);
  EXPECT_NEAR(view->rect().width(), 200, 2);
  EXPECT_EQ(canvas->indexOfChild(view), 1);
  EXPECT_EQ(view->parent(), canvas);
  EXPECT_EQ(canvas->childAt(corner.x() + 20, corner.y() + 20), view);
  EXPECT_FALSE(view->state().selected);
  view->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(scene_.selected, 1);
  EXPECT_TRUE(view->state().selected);
  scene_.views.pop_back();
  scene_.selected = 0;
  canvas_.SetScene(scene_);
  EXPECT_EQ(canvas->childCount(), 1);
  EXPECT_FALSE(view->isValid());
}

TEST_F(CanvasWidget, TheWayIsTheOneOfTheLastAnswer) {
  const auto way = [](double down) {
    FilmWay samples;
    for (int i = 0; i <= 20; ++i) {
      samples.push_back({i * 0.25, ViewOf(i * 100.0, i * down, 1000.0), 1.0});
    }
    return samples;
  };
  const auto picture = [](Canvas& canvas) {
    QCoreApplication::processEvents();
    return canvas.grab().toImage();
  };
  const QImage without = picture(canvas_);
  canvas_.SetWay(way(60.0));
  const QImage first = picture(canvas_);
  EXPECT_NE(first, without);
  canvas_.SetWay(way(20.0));
  const QImage second = picture(canvas_);
  EXPECT_NE(second, first);
  const EventCount paints(canvas_, QEvent::Paint);
  canvas_.SetWay(way(20.0));
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.Count(), 0) << "an answer that says nothing new";
  canvas_.SetWay({});
  EXPECT_EQ(picture(canvas_), without);
  // The way goes with the photo below it.
  canvas_.SetWay(way(20.0));
  canvas_.ZoomIn();
  EXPECT_NE(picture(canvas_), second);
  canvas_.FitPhoto();
  EXPECT_EQ(picture(canvas_), second);
}

}  // namespace
}  // namespace kelto::editor
