#include "editor/widgets/timeline.h"

#include <gmock/gmock.h>

#include <cmath>
#include <vector>

#include "editor/widgets/timeline_layout.h"
#include "tests/editor/support/widgets.h"

namespace kelto::editor {
namespace {

/// Ten seconds on 1000 pixels, from x = 10 on; held to 2 s, from 5 s to 7 s and from 9 s to 10 s.
class TimelineWidget : public WidgetTest {
 protected:
  TimelineWidget() {
    scene_.stops = {{2.0, 3.0}, {2.0, 2.0}, {1.0, 0.0}};
    scene_.length = 10.0;
    timeline_.SetScene(scene_);
    Show(timeline_, {1020, 200});
    QObject::connect(&timeline_, &Timeline::TimeAsked, &timeline_, [this](double seconds) {
      asked_.push_back(seconds);
      timeline_.SetTime(seconds);
    });
    QObject::connect(&timeline_, &Timeline::StopSelected, &timeline_,
                     [this](int stop) { scene_.selected = stop; });
    QObject::connect(&timeline_, &Timeline::StopTimesChanged, &timeline_,
                     [this](const StopTimes& times, Gesture gesture) {
                       gestures_.push_back(gesture);
                       scene_.stops = times;
                       scene_.length = LengthOf(times);
                       timeline_.SetScene(scene_);
                     });
    QObject::connect(&timeline_, &Timeline::EasingAsked, &timeline_,
                     [this](int stop) { easings_.push_back(stop); });
    QObject::connect(&timeline_, &Timeline::KeysMoved, &timeline_,
                     [this](size_t lane, const std::vector<double>& times, Gesture gesture) {
                       gestures_.push_back(gesture);
                       scene_.lanes[lane].times = times;
                     });
    QObject::connect(&timeline_, &Timeline::KeyAdded, &timeline_, [this](size_t lane, double time) {
      added_.push_back({lane, time});
    });
    QObject::connect(&timeline_, &Timeline::KeysRemoved, &timeline_,
                     [this](const std::vector<KeyPlace>& keys) { removed_ = keys; });
    QObject::connect(&timeline_, &Timeline::KeysCopied, &timeline_,
                     [this](const std::vector<KeyPlace>& keys, double later) {
                       copied_ = keys;
                       later_ = later;
                     });
  }

  static QPoint At(double seconds, int y) { return {static_cast<int>(10 + seconds * 100), y}; }
  static constexpr int kRuler = 10, kStops = 45;

  /// A film of keys: two lanes, 22 pixels from one to the next, names in the first 110 pixels.
  void OpenKeys() {
    scene_.stops.clear();
    scene_.lanes = {{"Position", {0.0, 0.5, 1.0}, {}}, {"Zoom", {0.0, 0.25, 1.0}, {}}};
    timeline_.SetScene(scene_);
  }
  static QPoint KeyAt(double time, int lane) {
    return {static_cast<int>(110 + time * 900), 36 + lane * 25};
  }

  TimelineScene scene_;
  Timeline timeline_;
  std::vector<double> asked_;
  std::vector<Gesture> gestures_;
  std::vector<int> easings_;
  struct Added {
    size_t lane;
    double time;
  };
  std::vector<Added> added_;
  std::vector<KeyPlace> removed_, copied_;
  double later_ = 0.0;
};

// Hundreds of stops take longer to draw than a frame of the film is seen.
TEST_F(TimelineWidget, AFilmThatPlaysRedrawsItsPlaceAlone) {
  timeline_.SetTime(2.0);
  QCoreApplication::processEvents();
  const EventCount paints(timeline_, QEvent::Paint);
  timeline_.SetTime(2.04);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.Count(), 1);
  EXPECT_LT(paints.Painted().width(), 40);
  const QImage played = timeline_.grab().toImage();
  timeline_.SetScene(scene_);
  EXPECT_EQ(timeline_.grab().toImage(), played) << "as if all of it had been drawn";
  timeline_.SetTime(7.0);
  EXPECT_NE(timeline_.grab().toImage(), played);
}

TEST_F(TimelineWidget, WhatIsDrawnFollowsWhatItShows) {
  const QImage before = timeline_.grab().toImage();
  scene_.way = {{0.0, {}, 1.0}, {5.0, {}, 3.0}, {10.0, {}, 0.0}};
  timeline_.SetWay(scene_.way);
  const QImage fast = timeline_.grab().toImage();
  EXPECT_NE(fast, before);
  timeline_.resize(900, 200);
  EXPECT_EQ(timeline_.grab().toImage().size(), QSize(900, 200));
  timeline_.resize(1020, 200);
  EXPECT_EQ(timeline_.grab().toImage(), fast);
  timeline_.setEnabled(false);
  EXPECT_NE(timeline_.grab().toImage(), fast);
}

TEST_F(TimelineWidget, TheWindowIsLaidOutAnewWhereItsRowsChangeAlone) {
  QWidget window;
  timeline_.setParent(&window);
  window.show();
  QCoreApplication::processEvents();
  const EventCount layouts(window, QEvent::LayoutRequest);
  scene_.selected = 1;
  timeline_.SetScene(scene_);
  QCoreApplication::processEvents();
  EXPECT_EQ(layouts.Count(), 0);
  OpenKeys();
  QCoreApplication::processEvents();
  EXPECT_EQ(layouts.Count(), 1);
  timeline_.setParent(nullptr);
}

TEST_F(TimelineWidget, TheRulerScrubs) {
  Drag(timeline_, At(3.0, kRuler), At(6.0, kRuler));
  Release(timeline_, At(6.0, kRuler));
  ASSERT_EQ(asked_.size(), 3u);
  EXPECT_NEAR(asked_[0], 3.0, 0.02);
  EXPECT_NEAR(asked_[2], 6.0, 0.02);
  Drag(timeline_, At(3.0, kRuler), At(99.0, kRuler));
  Release(timeline_, At(99.0, kRuler));
  EXPECT_EQ(asked_.back(), 10.0);
}

TEST_F(TimelineWidget, AnEdgeMovesTimeBetweenItsSides) {
  Drag(timeline_, At(2.0, kStops), At(3.0, kStops));
  Release(timeline_, At(3.0, kStops));
  EXPECT_NEAR(scene_.stops[0].hold, 3.0, 0.02);
  EXPECT_NEAR(scene_.stops[0].go, 2.0, 0.02);
  EXPECT_NEAR(scene_.length, 10.0, 1e-9);
  ASSERT_FALSE(gestures_.empty());
  for (const Gesture& gesture : gestures_) {
    EXPECT_EQ(gesture.id, gestures_[0].id);
    EXPECT_EQ(gesture.finished, &gesture == &gestures_.back());
  }
}

TEST_F(TimelineWidget, CtrlMovesAllThatFollows) {
  Drag(timeline_, At(5.0, kStops), At(6.0, kStops), Qt::ControlModifier);
  Release(timeline_, At(6.0, kStops));
  EXPECT_NEAR(scene_.stops[0].go, 4.0, 0.02);
  EXPECT_NEAR(scene_.length, 11.0, 0.02);
}

TEST_F(TimelineWidget, TheLastEdgeMakesTheFilmLonger) {
  Drag(timeline_, At(10.0, kStops), At(8.0, kStops));
  Release(timeline_, At(8.0, kStops));
  EXPECT_NEAR(scene_.length, 9.0, 0.02) << "the last stop has no time to look at it left";
}

TEST_F(TimelineWidget, AClickSelectsAStopAndChangesNothing) {
  QTest::mouseClick(&timeline_, Qt::LeftButton, Qt::NoModifier, At(6.0, kStops));
  EXPECT_EQ(scene_.selected, 1);
  QTest::mouseClick(&timeline_, Qt::LeftButton, Qt::NoModifier, At(2.0, kStops));
  EXPECT_TRUE(gestures_.empty());
}

TEST_F(TimelineWidget, ADoubleClickOnAWayAsksForItsEasing) {
  QTest::mouseDClick(&timeline_, Qt::LeftButton, Qt::NoModifier, At(8.0, kStops));
  QTest::mouseClick(&timeline_, Qt::RightButton, Qt::NoModifier, At(3.0, kStops));
  EXPECT_EQ(easings_, (std::vector<int>{1, 0}));
}

TEST_F(TimelineWidget, KeysStepThroughTimeAndLengthenStops) {
  QTest::keyClick(&timeline_, Qt::Key_Right);
  QTest::keyClick(&timeline_, Qt::Key_Right, Qt::ShiftModifier);
  QTest::keyClick(&timeline_, Qt::Key_End);
  EXPECT_THAT(asked_, testing::ElementsAre(testing::DoubleNear(0.04, 1e-9),
                                           testing::DoubleNear(1.04, 1e-9), 10.0));
  scene_.selected = 1;
  timeline_.SetScene(scene_);
  QTest::keyClick(&timeline_, Qt::Key_Plus);
  EXPECT_NEAR(scene_.stops[1].hold, 2.08, 0.03);
  QTest::keyClick(&timeline_, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_NEAR(scene_.stops[1].go, 1.92, 0.03);
  EXPECT_NE(gestures_[0].id, gestures_[1].id);
}

TEST_F(TimelineWidget, CtrlAndTheWheelZoomTime) {
  Turn(timeline_, At(5.0, kRuler), 5, Qt::ControlModifier);
  Drag(timeline_, At(5.0, kRuler), At(5.0, kRuler) + QPoint(100, 0));
  Release(timeline_, At(5.0, kRuler) + QPoint(100, 0));
  EXPECT_NEAR(asked_.front(), 5.0, 0.02);
  EXPECT_NEAR(asked_.back(), 5.0 + 1.0 / std::pow(1.2, 5), 0.02);
}

TEST_F(TimelineWidget, KeysAreDraggedSeveralAtATime) {
  OpenKeys();
  QTest::mouseClick(&timeline_, Qt::LeftButton, Qt::NoModifier, KeyAt(0.5, 0));
  QTest::mouseClick(&timeline_, Qt::LeftButton, Qt::ControlModifier, KeyAt(0.25, 1));
  EXPECT_EQ(timeline_.SelectedKeys(), (std::vector<KeyPlace>{{0, 1}, {1, 1}}));
  Drag(timeline_, KeyAt(0.5, 0), KeyAt(0.6, 0), Qt::NoModifier);
  Release(timeline_, KeyAt(0.6, 0));
  EXPECT_NEAR(scene_.lanes[0].times[1], 0.6, 0.005);
  EXPECT_NEAR(scene_.lanes[1].times[1], 0.35, 0.005);
  for (const Gesture& gesture : gestures_) {
    EXPECT_EQ(gesture.id, gestures_[0].id);
    EXPECT_EQ(gesture.finished, &gesture == &gestures_.back()) << "of all lanes the last alone";
  }
}

TEST_F(TimelineWidget, KeysAreSelectedInABandAddedCopiedAndRemoved) {
  OpenKeys();
  Drag(timeline_, KeyAt(0.1, 0), KeyAt(0.7, 1));
  Release(timeline_, KeyAt(0.7, 1));
  EXPECT_EQ(timeline_.SelectedKeys(), (std::vector<KeyPlace>{{0, 1}, {1, 1}}));
  QTest::keyClick(&timeline_, Qt::Key_C, Qt::ControlModifier);
  timeline_.SetTime(7.5);
  QTest::keyClick(&timeline_, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(copied_, (std::vector<KeyPlace>{{0, 1}, {1, 1}}));
  EXPECT_NEAR(later_, 0.5, 1e-9) << "the first of them to where the film stands";
  QTest::keyClick(&timeline_, Qt::Key_Delete);
  EXPECT_EQ(removed_, copied_);
  QTest::mouseDClick(&timeline_, Qt::LeftButton, Qt::NoModifier, KeyAt(0.75, 1));
  ASSERT_EQ(added_.size(), 1u);
  EXPECT_EQ(added_[0].lane, 1u);
  EXPECT_NEAR(added_[0].time, 0.75, 0.005);
}

TEST_F(TimelineWidget, ForgetsSelectedKeysThatAreGone) {
  OpenKeys();
  QTest::mouseClick(&timeline_, Qt::LeftButton, Qt::NoModifier, KeyAt(0.25, 1));
  scene_.lanes[1].times = {0.0};
  timeline_.SetScene(scene_);
  EXPECT_TRUE(timeline_.SelectedKeys().empty());
}

TEST_F(TimelineWidget, PaintsNothingForTheSameSceneAndItsLastRowAloneForAnotherWay) {
  scene_.way = {{0.0, {}, 0.0}, {5.0, {}, 2.0}, {10.0, {}, 0.0}};
  timeline_.SetScene(scene_);
  QCoreApplication::processEvents();
  const EventCount paints(timeline_, QEvent::Paint);
  timeline_.SetScene(scene_);
  timeline_.SetWay(scene_.way);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.Count(), 0);
  scene_.way[1].speed = 0.5;
  scene_.way[2].speed = 1.0;
  timeline_.SetWay(scene_.way);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.Count(), 1);
  EXPECT_GT(paints.Painted().top(), 60) << "below the stops";
  Timeline fresh;
  fresh.SetScene(scene_);
  Show(fresh, timeline_.size());
  timeline_.clearFocus();
  fresh.clearFocus();
  EXPECT_EQ(timeline_.grab().toImage(), fresh.grab().toImage()) << "as if all had been drawn anew";
  scene_.selected = 1;
  timeline_.SetScene(scene_);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.Painted(), timeline_.rect());
}

TEST_F(TimelineWidget, LowRowsHaveRoomOnASmallScreen) {
  scene_.sound = {0.5F};
  scene_.lanes = {{"Zoom", {0.0, 1.0}, {}}};
  timeline_.SetScene(scene_);
  const int usual = timeline_.minimumSizeHint().height();
  timeline_.SetLow(true);
  const int low = timeline_.minimumSizeHint().height();
  EXPECT_LT(low, usual * 2 / 3);
  const TimelineRows rows = RowsOf(scene_, QSizeF(600.0, low), true);
  EXPECT_LE(rows.speed.bottom(), low) << "the last row is seen whole";
  const double line = timeline_.fontMetrics().height();
  for (const QRectF& row : {rows.ruler, rows.stops, rows.lanes.front(), rows.speed}) {
    EXPECT_GE(row.height(), line) << "there is room for words";
  }
}

TEST_F(TimelineWidget, DrawsSoundSpeedAndEasing) {
  const auto drawn = [&] { return timeline_.grab().toImage(); };
  QImage before = drawn();
  scene_.way = {{0.0, {}, 0.0}, {5.0, {}, 2.0}, {10.0, {}, 0.0}};
  timeline_.SetScene(scene_);
  QImage after = drawn();
  EXPECT_NE(before, after);
  before = after;
  scene_.easing = {{"Ease", {0.0, 0.1, 0.9, 1.0}}};
  timeline_.SetScene(scene_);
  after = drawn();
  EXPECT_NE(before, after);
  before = after;
  scene_.sound = {0.2F, 1.0F, 0.4F};
  timeline_.SetScene(scene_);
  EXPECT_NE(before, drawn());
}

}  // namespace
}  // namespace kelto::editor
