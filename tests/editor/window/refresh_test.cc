// What changes and answers have the window do, and what they leave alone.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QtWidgets>

#include "editor/window/main_window.h"
#include "tests/editor/support/widgets.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

class Refresh : public testing::Test {
 protected:
  Refresh() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    window_.resize(1440, 900);
    window_.show();
    EXPECT_TRUE(window_.Open(folder_.Photo()));
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
    window_.Select(1);
  }
  ~Refresh() override { window_.TheSession().Save(); }

  /// Until no answer of the preview is due.
  void Rest() {
    const auto known = [&] { return window_.TheTimeline().Scene().way.size(); };
    const auto frames = static_cast<size_t>(window_.TheSession().Plan().frames);
    ASSERT_TRUE(WaitFor([&] { return known() == frames; }));
  }

  PhotoFolder folder_;
  MainWindow window_;
};

// The preview draws a film anew for each change, and the window shows it.
TEST_F(Refresh, AKeyIsOneChange) {
  const QSignalSpy changes(&window_.TheSession(), &Session::Changed);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  EXPECT_EQ(changes.count(), 1) << "its release changes nothing";
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  EXPECT_EQ(changes.count(), 2);
}

TEST_F(Refresh, AViewThatMovesPaintsTheCanvasOnceAndNoTimeline) {
  Rest();
  QCoreApplication::processEvents();
  const EventCount canvas(window_.TheCanvas(), QEvent::Paint),
      timeline(window_.TheTimeline(), QEvent::Paint);
  QTest::keyClick(&window_.TheCanvas(), Qt::Key_Right);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
  EXPECT_EQ(canvas.Count(), 1);
  EXPECT_EQ(timeline.Count(), 0) << "its stops are as they were";
}

TEST_F(Refresh, AnAnswerOfThePreviewRefreshesWhatItIsAboutAlone) {
  Rest();
  auto* length = WidgetNamed<QDoubleSpinBox>(window_, "Length");
  length->setFocus();
  length->selectAll();
  QTest::keyClicks(length, "12");  // not entered yet
  QCoreApplication::processEvents();
  auto* around = window_.TheTimeline().parentWidget();
  const EventCount layouts(*around, QEvent::LayoutRequest);
  const EventCount paints(window_.TheTimeline(), QEvent::Paint);
  const FilmWay way = {{0.0, {0, 0, 1600, 900}, 0.5}, {5.0, {400, 300, 800, 450}, 1.0}};
  emit window_.ThePreview().WayFound(way);
  QCoreApplication::processEvents();
  EXPECT_EQ(window_.TheTimeline().Scene().way, way);
  EXPECT_EQ(layouts.Count(), 0) << "the window was laid out again";
  EXPECT_EQ(length->text().left(2), "12") << "what was being typed is gone";
  EXPECT_EQ(paints.Count(), 1);
  EXPECT_LT(paints.Painted().height(), window_.TheTimeline().height() * 2 / 3)
      << "the stops were painted again";
}

TEST_F(Refresh, TheWheelScrollsThePanelsAndChangesNoBox) {
  auto* rate = WidgetNamed<QComboBox>(window_, "Frames a second");
  auto* left = WidgetNamed<QDoubleSpinBox>(window_, "Left");
  window_.TheCanvas().setFocus();
  const std::string before = window_.TheSession().Current().text;
  for (QWidget* box : {static_cast<QWidget*>(rate), static_cast<QWidget*>(left)}) {
    const QPoint at = box->rect().center();
    QWheelEvent turn(at, box->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(box, &turn);
  }
  EXPECT_EQ(window_.TheSession().Current().text, before);
  left->setFocus();
  const double was = left->value();
  const QPoint at = left->rect().center();
  QWheelEvent turn(at, left->mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(left, &turn);
  EXPECT_NE(left->value(), was) << "one that is being edited turns";
}

}  // namespace
}  // namespace kelto::editor
