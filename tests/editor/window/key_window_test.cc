// The window with a film of keys: typed, made views, dragged.
#include <gtest/gtest.h>

#include <QtWidgets>
#include <nlohmann/json.hpp>

#include "editor/window/main_window.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

/// Keys of zoom at 0, 2.5 and 5 s.
const char* const kKeysProject =
    R"({"image": "photo.png", "film": {"width": 640, "height": 360, "rate": 25, "seconds": 5},
        "parameters": {"size": [{"time": 0, "value": 1}, {"time": 0.5, "value": 2},
                                {"time": 1, "value": 1.5}],
                       "invelocity": [{"time": 0, "value": "In: Linear"},
                                      {"time": 1, "value": "In: Ease In"}]}})";

class KeyWindow : public testing::Test {
 protected:
  KeyWindow() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    QFile file(folder_.File("keys.json"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(kKeysProject);
    file.close();
    window_.resize(1280, 720);
    window_.show();
    EXPECT_TRUE(window_.Open(file.fileName()));
  }
  ~KeyWindow() override { window_.TheSession().Save(); }

  nlohmann::json Json() { return nlohmann::json::parse(window_.TheSession().Current().text); }
  template <typename Widget>
  Widget* Named(const QString& name) {
    return WidgetNamed<Widget>(window_, name);
  }

  PhotoFolder folder_;
  MainWindow window_;
};

TEST_F(KeyWindow, TimeAndValueOfTheSelectedKeyCanBeTyped) {
  auto* time = Named<QDoubleSpinBox>("Time");
  auto* zoom = Named<QDoubleSpinBox>("Zoom");
  EXPECT_FALSE(time->isVisible()) << "no key is selected";
  // To the second one, by the keyboard alone.
  for (int i = 0; i < 2; ++i) {
    QTest::keyClick(&window_.TheTimeline(), Qt::Key_Right, Qt::ControlModifier);
  }
  ASSERT_TRUE(time->isVisible());
  EXPECT_EQ(time->value(), 2.5);
  EXPECT_EQ(zoom->value(), 2.0);
  EXPECT_FALSE(Named<QDoubleSpinBox>("Across")->isVisible());
  zoom->setValue(3.25);
  EXPECT_EQ(Json()["parameters"]["size"][1]["value"], 3.25);
  time->setValue(1.0);
  EXPECT_NEAR(Json()["parameters"]["size"][1]["time"], 0.2, 1e-9);
  time->setValue(99.0);
  EXPECT_NEAR(time->value(), 4.96, 1e-3) << "a frame ahead of the next key";
  window_.TheSession().Undo();
  EXPECT_EQ(time->value(), 1.0);
  window_.TheSession().Undo();
  window_.TheSession().Undo();
  EXPECT_EQ(zoom->value(), 2.0);
  EXPECT_FALSE(window_.TheSession().Modified());
  // On to a key of where the view is, and to one of how it arrives, which is one of a list.
  const auto go = [&](int keys) {
    for (int i = 0; i < keys; ++i) {
      QTest::keyClick(&window_.TheTimeline(), Qt::Key_Right, Qt::ControlModifier);
    }
  };
  go(3);
  auto* across = Named<QDoubleSpinBox>("Across");
  ASSERT_TRUE(across->isVisible());
  across->setValue(0.25);
  EXPECT_EQ(Json()["parameters"]["position"][1]["value"], nlohmann::json({0.25, 0.0}));
  go(2);
  auto* how = Named<QComboBox>("How");
  ASSERT_TRUE(how->isVisible());
  EXPECT_FALSE(zoom->isVisible());
  EXPECT_EQ(how->currentText(), "Gently");
  how->setCurrentIndex(0);
  emit how->activated(0);
  EXPECT_EQ(Json()["parameters"]["invelocity"][1]["value"], "In: Linear");
}

TEST_F(KeyWindow, AnAddedKeyLiesOnTheWayAndItsValueCanBeTyped) {
  Timeline& timeline = window_.TheTimeline();
  const int quarter = 110 + (timeline.width() - 120) / 4;
  QTest::mouseDClick(&timeline, Qt::LeftButton, {}, QPoint(quarter, 36));
  ASSERT_EQ(Json()["parameters"]["size"].size(), 4u);
  EXPECT_NEAR(Json()["parameters"]["size"][1]["value"], 1.5, 0.01);
  auto* zoom = Named<QDoubleSpinBox>("Zoom");
  ASSERT_TRUE(zoom->isVisible()) << "it is the selected key";
  zoom->setValue(1.25);
  EXPECT_EQ(Json()["parameters"]["size"][1]["value"], 1.25);
}

TEST_F(KeyWindow, SeveralSelectedKeysAreRemovedAtOnce) {
  QFile file(folder_.File("five.json"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(
      R"({"image": "photo.png", "film": {"width": 640, "height": 360, "rate": 25, "seconds": 5},
          "parameters": {"size": [{"time": 0, "value": 1}, {"time": 0.25, "value": 2},
                                  {"time": 0.5, "value": 3}, {"time": 0.75, "value": 2},
                                  {"time": 1, "value": 1}]}})");
  file.close();
  ASSERT_TRUE(window_.Open(file.fileName()));
  Timeline& timeline = window_.TheTimeline();
  // A band around the last three.
  const auto at = [&](double time, int y) {
    return QPoint(static_cast<int>(110 + time * (timeline.width() - 120)), y);
  };
  QTest::mousePress(&timeline, Qt::LeftButton, Qt::NoModifier, at(0.4, 28));
  QTest::mouseMove(&timeline, at(0.6, 34));
  QTest::mouseMove(&timeline, at(1.0, 46) + QPoint(8, 0));
  QTest::mouseRelease(&timeline, Qt::LeftButton, Qt::NoModifier, at(1.0, 46) + QPoint(8, 0));
  ASSERT_EQ(timeline.SelectedKeys().size(), 3u);
  QTest::keyClick(&timeline, Qt::Key_Delete);
  const nlohmann::json keys = Json()["parameters"]["size"];
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[1]["time"], 0.25);
  window_.TheSession().Undo();
  EXPECT_EQ(Json()["parameters"]["size"].size(), 5u) << "in one step";
}

TEST_F(KeyWindow, AStopInAFilmOfKeysIsRefusedInWords) {
  const std::string before = window_.TheSession().Current().text;
  Canvas& canvas = window_.TheCanvas();
  QTest::mouseDClick(&canvas, Qt::LeftButton, {}, canvas.rect().center());
  EXPECT_EQ(window_.TheSession().Current().text, before);
  bool told = false;
  for (QLabel* label : window_.findChildren<QLabel*>()) {
    told |= label->isVisible() && label->text() == "the film has keys; make them views first";
  }
  EXPECT_TRUE(told);
}

TEST(EmptyWindow, ADoubleClickOnTheCanvasIsNothing) {
  MainWindow window({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE});
  window.resize(1280, 720);
  window.show();
  Canvas& canvas = window.TheCanvas();
  for (const QPoint at : {canvas.rect().center(), QPoint(0, 0), canvas.rect().bottomRight()}) {
    QTest::mouseDClick(&canvas, Qt::LeftButton, {}, at);
  }
  EXPECT_FALSE(window.TheSession().IsOpen());
  EXPECT_FALSE(window.TheSession().Modified());
}

TEST_F(KeyWindow, HandlesOfViewsMadeOfKeysStayUnderThePointer) {
  for (QAction* action : window_.findChildren<QAction*>()) {
    if (action->text().remove('&') == "Make Keys Views") action->trigger();
  }
  Canvas& canvas = window_.TheCanvas();
  ASSERT_EQ(canvas.ViewCount(), 3);
  for (int view = 0; view < canvas.ViewCount(); ++view) {
    window_.Select(view);
    const QRect before = canvas.ViewPlace(view);
    const QPoint corner = before.bottomRight();
    for (const int pixels : {8, 16, 24}) {
      const QPoint at = corner - QPoint(pixels, pixels * 9 / 16);
      if (pixels == 8) QTest::mousePress(&canvas, Qt::LeftButton, Qt::ControlModifier, corner);
      QMouseEvent move(QEvent::MouseMove, at, canvas.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                       Qt::ControlModifier);
      QCoreApplication::sendEvent(&canvas, &move);
      const QRect now = canvas.ViewPlace(view);
      EXPECT_LE((now.bottomRight() - at).manhattanLength(), 4) << view << ", " << pixels;
      EXPECT_LE((now.topLeft() - before.topLeft()).manhattanLength(), 2) << view << ", " << pixels;
    }
    QTest::mouseRelease(&canvas, Qt::LeftButton, Qt::ControlModifier, corner);
  }
}

}  // namespace
}  // namespace kelto::editor
