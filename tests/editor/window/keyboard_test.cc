// The window by its keys alone.
#include <gtest/gtest.h>

#include <QtWidgets>
#include <algorithm>
#include <map>
#include <vector>

#include "editor/window/main_window.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

class Keyboard : public testing::Test {
 protected:
  Keyboard() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    window_.resize(1440, 900);
    window_.show();
    EXPECT_TRUE(QFile::copy(folder_.Photo(), folder_.File("second.png")));
    // A show has all that there is.
    EXPECT_TRUE(window_.Open({folder_.Photo(), folder_.File("second.png")}));
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
  }
  ~Keyboard() override { window_.TheSession().Save(); }

  /// What can be reached: the editors within boxes are the boxes'.
  static bool IsControl(const QWidget* widget) {
    return widget->isVisible() && widget->isEnabled() &&
           (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr &&
           !widget->objectName().startsWith("qt_");
  }
  static std::string NameOf(const QWidget* widget) {
    return widget->metaObject()->className() + std::string(" ") +
           widget->accessibleName().toStdString();
  }

  /// Where the keyboard goes from the canvas on until it is back, by Tab or by Shift and Tab.
  std::vector<QWidget*> Round(Qt::Key key) {
    window_.Select(-1);
    window_.TheCanvas().setFocus();
    std::vector<QWidget*> round;
    for (int press = 0; press < 200; ++press) {
      QWidget* now = QApplication::focusWidget();
      if (round.size() > 1 && now == round.front()) return round;
      // Tab goes through the views first.
      if (round.empty() || round.back() != now) round.push_back(now);
      QTest::keyClick(now, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    ADD_FAILURE() << "Tab never comes back to the canvas";
    return round;
  }

  PhotoFolder folder_;
  MainWindow window_;
};

TEST_F(Keyboard, TabReachesEveryControlOnceAsTheWindowIsRead) {
  const std::vector<QWidget*> round = Round(Qt::Key_Tab);
  std::map<const QWidget*, size_t> places;
  for (size_t i = 0; i < round.size(); ++i) {
    EXPECT_TRUE(places.emplace(round[i], i).second) << NameOf(round[i]) << " comes twice";
  }
  size_t controls = 0;
  for (const QWidget* widget : window_.findChildren<QWidget*>()) {
    if (!IsControl(widget)) continue;
    ++controls;
    EXPECT_EQ(places.count(widget), 1u) << NameOf(widget) << " is not reached";
  }
  EXPECT_EQ(round.size(), controls);
  // Down the columns, and from left to right within a row.
  for (size_t i = 1; i < round.size(); ++i) {
    if (round[i]->parentWidget() != round[i - 1]->parentWidget()) continue;
    const QRect before = round[i - 1]->geometry(), after = round[i]->geometry();
    EXPECT_TRUE(after.top() > before.bottom() || after.left() > before.right())
        << NameOf(round[i - 1]) << " is followed by " << NameOf(round[i]);
  }
  const auto place = [&](QWidget* widget) { return places.at(widget); };
  auto* strip = window_.TheStrip().findChild<QListWidget*>();
  EXPECT_LT(place(&window_.TheCanvas()), place(WidgetNamed<QSlider>(window_, "Place in the film")));
  EXPECT_LT(place(WidgetNamed<QSlider>(window_, "Place in the film")),
            place(WidgetNamed<QDoubleSpinBox>(window_, "Left")));
  EXPECT_LT(place(WidgetNamed<QDoubleSpinBox>(window_, "Left")),
            place(WidgetNamed<QComboBox>(window_, "Size")));
  EXPECT_LT(place(WidgetNamed<QComboBox>(window_, "Size")), place(&window_.TheTimeline()));
  EXPECT_LT(place(&window_.TheTimeline()), place(strip));
}

TEST_F(Keyboard, ShiftAndTabGoTheSameWayBack) {
  std::vector<QWidget*> there = Round(Qt::Key_Tab);
  std::vector<QWidget*> back = Round(Qt::Key_Backtab);
  // Going back ends with the first view, from which there is a way.
  std::erase(back, WidgetNamed<QDoubleSpinBox>(window_, "Way"));
  std::reverse(there.begin() + 1, there.end());
  EXPECT_EQ(there, back);
}

TEST_F(Keyboard, NoTwoCommandsHaveTheSameShortcut) {
  std::map<QString, QString> taken;
  for (const QAction* action : window_.findChildren<QAction*>()) {
    for (const QKeySequence& keys : action->shortcuts()) {
      const auto [other, isNew] = taken.emplace(keys.toString(), action->text());
      EXPECT_TRUE(isNew) << keys.toString().toStdString() << ": " << other->second.toStdString()
                         << " and " << action->text().toStdString();
    }
  }
  EXPECT_GT(taken.size(), 20u);
}

TEST_F(Keyboard, WhatIsBeingTypedCountsWhenTheWindowCloses) {
  ASSERT_TRUE(window_.TheSession().Save());
  auto* length = WidgetNamed<QDoubleSpinBox>(window_, "Length");
  length->setFocus();
  length->selectAll();
  QTest::keyClicks(length, "12");
  bool asked = false;
  QTimer::singleShot(0, &window_, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    asked = true;
    box->button(QMessageBox::Save)->click();
  });
  EXPECT_TRUE(window_.close());
  EXPECT_TRUE(asked);
  EXPECT_EQ(window_.TheSession().Plan().frames, 300);
}

}  // namespace
}  // namespace kelto::editor
