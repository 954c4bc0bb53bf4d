// bench_editor PHOTO: what a drag costs, from the event to the painted canvas and to the frame.
#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

#include "editor/preview/preview.h"
#include "editor/widgets/canvas.h"
#include "editor/widgets/timeline.h"
#include "editor/window/main_window.h"
#include "host/plan/default_plan.h"
#include "host/project/project_file.h"

namespace {

using namespace kelto;
using namespace kelto::editor;
using Clock = std::chrono::steady_clock;

constexpr int kPatience = 60000;

double Since(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// CPU time of this thread, which other work on the machine changes little.
double ThreadMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

void Report(const char* what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  std::printf("%-52s %8.2f %8.2f\n", what, times[times.size() / 2], times[times.size() * 95 / 100]);
}

void Send(QWidget& widget, QEvent::Type type, QPointF at) {
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, at, widget.mapToGlobal(at), button, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &event);
}

/// What each move of a drag takes until `widget` is painted.
std::vector<double> DragTimes(QWidget& widget, QPointF from, QPointF step) {
  std::vector<double> times;
  Send(widget, QEvent::MouseButtonPress, from);
  for (int move = 1; move <= 200; ++move) {
    const auto begin = Clock::now();
    Send(widget, QEvent::MouseMove, from + step * (move % 100));
    widget.repaint();
    times.push_back(Since(begin));
  }
  Send(widget, QEvent::MouseButtonRelease, from);
  return times;
}

CanvasScene SceneOf(const QImage& photo, int views) {
  CanvasScene scene;
  scene.limits.photoWidth = photo.width();
  scene.limits.photoHeight = photo.height();
  scene.limits.shape = 9.0 / 16.0;
  scene.limits.narrowest = photo.width() / 20.0;
  scene.limits.frameWidth = 1920.0;
  for (int view = 0; view < views; ++view) {
    scene.views.push_back(ViewAbout({photo.width() * (0.2 + 0.6 * view / views),
                                     photo.height() * (0.3 + 0.4 * (view % 7) / 7.0)},
                                    photo.width() / 3.0, scene.limits));
    scene.way.push_back({view * 1.0, scene.views.back(), 1.0});
  }
  return scene;
}

void MeasureCanvas(const QImage& photo, int views, const char* what) {
  Canvas canvas;
  canvas.resize(1280, 720);
  CanvasScene scene = SceneOf(photo, views);
  canvas.SetPhoto(photo);
  canvas.SetScene(scene);
  canvas.show();
  QCoreApplication::processEvents();
  QObject::connect(&canvas, &Canvas::ViewChanged, &canvas,
                   [&](int view, const host::PhotoRect& part, Gesture) {
                     scene.views[view] = part;
                     canvas.SetScene(scene);
                   });
  QObject::connect(&canvas, &Canvas::ViewSelected, &canvas, [&](int view) {
    scene.selected = view;
    canvas.SetScene(scene);
  });
  Report(what, DragTimes(canvas, {640, 360}, {1.0, 0.5}));
}

void MeasureTimeline() {
  Timeline timeline;
  timeline.resize(1280, 200);
  TimelineScene scene;
  scene.stops.assign(500, {2.0, 3.0});
  scene.length = LengthOf(scene.stops);
  timeline.SetScene(scene);
  timeline.show();
  QCoreApplication::processEvents();
  QObject::connect(&timeline, &Timeline::StopTimesChanged, &timeline,
                   [&](const StopTimes& times, Gesture) {
                     scene.stops = times;
                     timeline.SetScene(scene);
                   });
  Report("timeline, 500 stops: a step of a drag, painted",
         DragTimes(timeline, {640.0, 45.0}, {0.3, 0.0}));
}

void MeasurePreview(const host::RenderPlan& first, const char* what) {
  host::RenderPlan plan = first;
  Preview preview(KELTO_PREVIEW, KELTO_MODULE);
  bool exact = false;
  // qWaitFor looks every ten milliseconds, which is a quarter of what is measured.
  QEventLoop drawn;
  QObject::connect(&preview, &Preview::FrameDrawn, &preview,
                   [&](const QImage&, int32_t, bool isExact) {
                     exact = isExact;
                     drawn.quit();
                   });
  preview.SetBox({960, 540});
  preview.SetPlan(plan);
  if (!QTest::qWaitFor([&] { return exact; }, kPatience)) return;
  std::vector<double> times;
  for (int change = 0; change < 100; ++change) {
    host::SetMove(plan, View{1.2 + change * 0.01, 0.0, 0.0}, View{2.5, 0.1, 0.1});
    const auto begin = Clock::now();
    preview.SetPlan(plan);
    drawn.exec();
    times.push_back(Since(begin));
  }
  Report(what, times);
}

/// The editor's window, from nothing to the photo, and what a key takes in a film of 500 stops
/// until all of the window shows what came of it.
void MeasureWindow(const char* path) {
  const auto begin = Clock::now();
  MainWindow window({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE});
  window.resize(1440, 900);
  window.show();
  if (!QTest::qWaitForWindowExposed(&window, kPatience)) return;
  Report("window up", {Since(begin)});
  bool read = false;
  QObject::connect(&window.ThePreview(), &Preview::PhotoRead, &window, [&] { read = true; });
  const auto opened = Clock::now();
  window.Open(path);
  if (!QTest::qWaitFor([&] { return read; }, kPatience)) return;
  window.TheCanvas().repaint();
  Report("photo shown in the window, from its name on", {Since(opened)});

  host::RenderPlan plan = window.TheSession().Plan();
  const PixelSize photo = window.TheSession().Photo();
  std::vector<host::TourView> stops;
  for (int stop = 0; stop < 500; ++stop) {
    const double x = photo.width * (0.1 + 0.5 * stop / 500), y = photo.height * 0.1 * (stop % 5);
    stops.push_back({host::PhotoRect{x, y, photo.width / 4.0, photo.width * 9 / 64.0}, 1.0, 2.0});
  }
  stops.back().go = 0.0;
  plan.SetTour(stops);
  const QTemporaryDir folder;
  const QString project = folder.filePath("stops.json");
  host::WriteProject(project.toStdString(), plan);
  window.Open(project);
  window.Select(250);
  QTest::qWait(2000);  // the way has been found
  bool drawn = false, found = false;
  QObject::connect(&window.ThePreview(), &Preview::FrameDrawn, &window, [&] { drawn = true; });
  QObject::connect(&window.ThePreview(), &Preview::WayFound, &window, [&] { found = true; });
  std::vector<double> events, painted, answered, busy;
  for (int key = 0; key < 60; ++key) {
    drawn = found = false;
    const auto pressed = Clock::now();
    const double before = ThreadMilliseconds();
    QTest::keyClick(&window.TheCanvas(), key % 2 == 0 ? Qt::Key_Right : Qt::Key_Left);
    events.push_back(Since(pressed));
    QCoreApplication::processEvents();
    painted.push_back(Since(pressed));
    while (!drawn || !found) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    answered.push_back(Since(pressed));
    busy.push_back(ThreadMilliseconds() - before);
    QTest::qWait(30);
  }
  Report("500 stops: a key in the canvas", events);
  Report("500 stops: and all that it changes painted", painted);
  Report("500 stops: and the preview's answers painted", answered);
  Report("500 stops: CPU time of the window for all that", busy);
  window.TheSession().Save();
}

int Measure(const char* path) {
  std::printf("%-52s %8s %8s\n", "", "median", "95 %");
  host::RenderPlan plan = host::DefaultPlan(path);
  plan.format.size = {960, 540};
  plan.motion = host::MotionLaw::kSteady;
  host::SetMove(plan, View{1.2, 0.0, 0.0}, View{2.5, 0.1, 0.1});

  QImage photo;
  {
    Preview preview(KELTO_PREVIEW, KELTO_MODULE);
    bool drawn = false;
    QObject::connect(&preview, &Preview::PhotoRead, &preview,
                     [&](const QImage& read) { photo = read; });
    QObject::connect(&preview, &Preview::FrameDrawn, &preview, [&] { drawn = true; });
    QObject::connect(&preview, &Preview::Failed, &preview, [](const QString& reason) {
      std::fprintf(stderr, "bench_editor: %s\n", qPrintable(reason));
    });
    const auto begin = Clock::now();
    preview.SetPlan(plan);
    if (!QTest::qWaitFor([&] { return !photo.isNull(); }, kPatience)) return 1;
    Canvas canvas;
    canvas.resize(1280, 720);
    canvas.SetScene(SceneOf(photo, 2));
    canvas.SetPhoto(photo);
    canvas.show();
    canvas.repaint();
    Report("photo on the canvas, from its name on", {Since(begin)});
    if (!QTest::qWaitFor([&] { return drawn; }, kPatience)) return 1;
    Report("first frame, from its name on", {Since(begin)});
  }
  MeasureWindow(path);
  MeasureCanvas(photo, 3, "canvas, 3 views: a step of a drag, painted");
  MeasureCanvas(photo, 500, "canvas, 500 views: a step of a drag, painted");
  MeasureTimeline();
  MeasurePreview(plan, "preview, 960x540, Hi Qual: change to frame");
  plan.format.size = {1920, 1080};
  MeasurePreview(plan, "preview, 1920x1080 film shown at 960x540");
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  if (count != 2) {
    std::fputs("bench_editor: give it a photo\n", stderr);
    return 2;
  }
  return Measure(arguments[1]);
}
