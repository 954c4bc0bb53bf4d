// Random mouse, wheel and keys, the same in each run, on widgets that answer as the window does.
// KELTO_EVENT_SECONDS lets it go on for longer than a test.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>

#include "editor/widgets/canvas.h"
#include "editor/widgets/timeline.h"
#include "tests/editor/rules/limits_of_tests.h"
#include "tests/editor/support/widgets.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;

constexpr int kEvents = 20000;

class RandomEvents : public WidgetTest {
 protected:
  int Number(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }

  Qt::KeyboardModifiers SomeKeys() {
    constexpr Qt::KeyboardModifiers kNone = Qt::NoModifier;
    return (Number(0, 3) == 0 ? Qt::ShiftModifier : kNone) |
           (Number(0, 3) == 0 ? Qt::ControlModifier : kNone) |
           (Number(0, 5) == 0 ? Qt::AltModifier : kNone);
  }

  /// One thing that somebody may do to `widget`.
  void Do(QWidget& widget) {
    constexpr Qt::Key kKeys[] = {Qt::Key_Left,   Qt::Key_Right, Qt::Key_Up,     Qt::Key_Down,
                                 Qt::Key_Plus,   Qt::Key_Minus, Qt::Key_Delete, Qt::Key_Space,
                                 Qt::Key_Escape, Qt::Key_Tab,   Qt::Key_0,      Qt::Key_1,
                                 Qt::Key_Home,   Qt::Key_End,   Qt::Key_C,      Qt::Key_V};
    constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::LeftButton, Qt::LeftButton,
                                            Qt::MiddleButton, Qt::RightButton};
    const QPoint at(Number(-20, widget.width() + 20), Number(-20, widget.height() + 20));
    switch (Number(0, 9)) {
      case 0:
        held_ = kButtons[Number(0, 4)];
        return QTest::mousePress(&widget, held_, SomeKeys(), at);
      case 1:
        return QTest::mouseRelease(&widget, held_, SomeKeys(), at);
      case 2:
        return QTest::mouseDClick(&widget, Qt::LeftButton, SomeKeys(), at);
      case 3:
        return Turn(widget, at, Number(-3, 3), SomeKeys());
      case 4:
        return QTest::keyPress(&widget, kKeys[Number(0, 15)], SomeKeys());
      case 5:
        return QTest::keyRelease(&widget, kKeys[Number(0, 15)], SomeKeys());
      default: {
        QMouseEvent move(QEvent::MouseMove, at, widget.mapToGlobal(at), Qt::NoButton, held_,
                         SomeKeys());
        QCoreApplication::sendEvent(&widget, &move);
      }
    }
  }

  /// Calls `step` as often as a test does, or for as long as was asked for.
  template <typename Step>
  void Repeat(Step step) {
    const char* wanted = std::getenv("KELTO_EVENT_SECONDS");
    const double seconds = wanted == nullptr ? 0.0 : std::atof(wanted);
    const auto begin = std::chrono::steady_clock::now();
    for (int event = 0;; ++event) {
      const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
      if (event >= kEvents && passed.count() >= seconds) return;
      step(event);
      if (HasFatalFailure()) return;
      if (event % 200 == 0) QCoreApplication::processEvents();
    }
  }

  std::mt19937 random_{15};
  Qt::MouseButton held_ = Qt::LeftButton;
};

TEST_F(RandomEvents, LeaveTheCanvasWithViewsOfItsPhoto) {
  Canvas canvas;
  CanvasScene scene;
  scene.limits = LandscapeLimits();
  scene.views = {ViewOf(0.0, 0.0, 4000.0), ViewOf(1000.0, 1000.0, 800.0)};
  canvas.SetScene(scene);
  int64_t open = 0;  // the gesture that is not finished
  QObject::connect(&canvas, &Canvas::ViewChanged, &canvas,
                   [&](int view, const PhotoRect& part, Gesture gesture) {
                     ASSERT_LT(static_cast<size_t>(view), scene.views.size());
                     ASSERT_TRUE(open == 0 || open == gesture.id)
                         << "a gesture begins while another is open";
                     open = gesture.finished ? 0 : gesture.id;
                     scene.views[view] = part;
                     // Not at once each time, as the window may be late.
                     if (Number(0, 3) != 0) canvas.SetScene(scene);
                   });
  QObject::connect(&canvas, &Canvas::ViewSelected, &canvas, [&](int view) {
    ASSERT_LT(view, static_cast<int>(scene.views.size()));
    scene.selected = view;
    canvas.SetScene(scene);
  });
  QObject::connect(&canvas, &Canvas::ViewAdded, &canvas, [&](const PhotoRect& part) {
    if (scene.views.size() < 12) scene.views.push_back(part);
    canvas.SetScene(scene);
  });
  QObject::connect(&canvas, &Canvas::ViewRemoved, &canvas, [&](int view) {
    ASSERT_LT(static_cast<size_t>(view), scene.views.size());
    if (scene.views.size() > 2) scene.views.erase(scene.views.begin() + view);
    scene.selected = -1;
    open = 0;
    canvas.SetScene(scene);
  });
  Show(canvas, {600, 450});
  Repeat([&](int event) {
    Do(canvas);
    if (event % 50 == 0) canvas.grab();
    if (event % 997 == 0) canvas.resize(Number(240, 900), Number(160, 700));
    for (const PhotoRect& view : scene.views) {
      ASSERT_GE(view.x, -1e-6) << "event " << event;
      ASSERT_GE(view.y, -1e-6) << "event " << event;
      ASSERT_LE(view.Right(), 4000.0 + 1e-6) << "event " << event;
      ASSERT_LE(view.Bottom(), 3000.0 + 1e-6) << "event " << event;
      ASSERT_NEAR(view.height, view.width * 9.0 / 16.0, 1e-6) << "event " << event;
    }
  });
}

TEST_F(RandomEvents, LeaveTheTimelineWithTimes) {
  Timeline timeline;
  TimelineScene scene;
  scene.stops = {{2.0, 3.0}, {2.0, 2.0}, {1.0, 0.0}};
  scene.length = 10.0;
  scene.lanes = {{"Position", {0.0, 0.5, 1.0}, {}}, {"Zoom", {0.0, 0.25, 1.0}, {}}};
  timeline.SetScene(scene);
  QObject::connect(&timeline, &Timeline::TimeAsked, &timeline, [&](double seconds) {
    ASSERT_TRUE(seconds >= 0.0 && seconds <= scene.length + 1e-9);
    timeline.SetTime(seconds);
  });
  QObject::connect(&timeline, &Timeline::StopTimesChanged, &timeline,
                   [&](const StopTimes& times, Gesture) {
                     ASSERT_EQ(times.size(), scene.stops.size());
                     scene.stops = times;
                     scene.length = LengthOf(times);
                     ASSERT_GT(scene.length, 0.0);
                     // Longer than anybody holds a view.
                     if (scene.length > 1000.0) scene.stops[0].hold = scene.stops[1].hold = 1.0;
                     scene.length = LengthOf(scene.stops);
                     timeline.SetScene(scene);
                   });
  QObject::connect(&timeline, &Timeline::KeysMoved, &timeline,
                   [&](size_t lane, const std::vector<double>& times, Gesture) {
                     ASSERT_TRUE(std::is_sorted(times.begin(), times.end()));
                     scene.lanes[lane].times = times;
                     timeline.SetScene(scene);
                   });
  QObject::connect(&timeline, &Timeline::KeyAdded, &timeline, [&](size_t lane, double time) {
    std::vector<double>& times = scene.lanes[lane].times;
    if (times.size() < 30) times.insert(std::upper_bound(times.begin(), times.end(), time), time);
    timeline.SetScene(scene);
  });
  QObject::connect(&timeline, &Timeline::KeysRemoved, &timeline,
                   [&](const std::vector<KeyPlace>& keys) {
                     for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
                       std::vector<double>& times = scene.lanes[key->lane].times;
                       ASSERT_LT(key->key, times.size());
                       if (times.size() > 2) times.erase(times.begin() + key->key);
                     }
                     timeline.SetScene(scene);
                   });
  Show(timeline, {700, 220});
  Repeat([&](int event) {
    Do(timeline);
    if (event % 50 == 0) timeline.grab();
    for (const StopTime& time : scene.stops) ASSERT_TRUE(time.hold >= -1e-9 && time.go >= -1e-9);
  });
}

}  // namespace
}  // namespace kelto::editor
