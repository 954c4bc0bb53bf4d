// Screens of 1280 x 720 whose pixels are doubled: 640 x 360.
#include <gtest/gtest.h>

#include <QtWidgets>

#include "editor/window/colour_dialog.h"
#include "editor/window/main_window.h"
#include "tests/editor/window/support.h"

namespace kelto::editor {
namespace {

/// What a window manager leaves of it.
constexpr QSize kRoom(632, 336);

class SmallScreen : public testing::Test {
 protected:
  SmallScreen() : window_({KELTO_COMMAND, KELTO_PREVIEW, KELTO_MODULE}) {
    qputenv("KELTO_MODULE", KELTO_MODULE);
    window_.resize(kRoom);
    window_.show();
  }
  ~SmallScreen() override { window_.TheSession().Save(); }

  PhotoFolder folder_;
  MainWindow window_;
};

TEST_F(SmallScreen, ShowsAllOfTheTimeline) {
  ASSERT_TRUE(window_.Open(folder_.Photo()));
  QTest::qWait(1);  // what is due is laid out
  EXPECT_EQ(window_.size(), kRoom) << "it keeps to the screen";
  const Timeline& timeline = window_.TheTimeline();
  EXPECT_GE(timeline.height(), timeline.minimumSizeHint().height());
  EXPECT_LT(timeline.minimumSizeHint().height(), 90) << "its rows are low";
  EXPECT_EQ(timeline.visibleRegion().boundingRect(), timeline.rect());
  window_.resize(1280, 720);
  EXPECT_GT(timeline.minimumSizeHint().height(), 100) << "rows of the usual height again";
}

TEST_F(SmallScreen, ScrollsToThePicturesOfASlideshow) {
  ASSERT_TRUE(QFile::copy(folder_.Photo(), folder_.File("second.png")));
  ASSERT_TRUE(window_.Open({folder_.Photo(), folder_.File("second.png")}));
  QTest::qWait(1);
  EXPECT_EQ(window_.size(), kRoom);
  QScrollArea* area = nullptr;
  for (QWidget* at = &window_.TheStrip(); at != nullptr && area == nullptr;
       at = at->parentWidget()) {
    area = qobject_cast<QScrollArea*>(at);
  }
  ASSERT_NE(area, nullptr);
  EXPECT_FALSE(area->horizontalScrollBar()->isVisible()) << "down alone";
  area->ensureWidgetVisible(&window_.TheStrip());
  EXPECT_EQ(window_.TheStrip().visibleRegion().boundingRect(), window_.TheStrip().rect());
}

TEST_F(SmallScreen, ANoticeTakesItsOwnHeightAlone) {
  window_.resize(1280, 720);
  ASSERT_TRUE(window_.Open(folder_.Photo()));
  QTest::qWait(1);
  const int canvas = window_.TheCanvas().height();
  EXPECT_FALSE(window_.Open(folder_.File("missing.json")));
  QTest::qWait(1);
  auto* notice = window_.findChild<QLabel*>("notice");
  ASSERT_TRUE(notice->isVisible());
  EXPECT_NEAR(canvas - window_.TheCanvas().height(), notice->height(), 4);
  const Timeline& timeline = window_.TheTimeline();
  EXPECT_EQ(timeline.visibleRegion().boundingRect(), timeline.rect()) << "nothing has to scroll";
}

TEST(ColourDialog, HasItsButtonsOnASmallScreen) {
  ScrolledColourDialog dialog("Colour", QColor(10, 20, 30), kRoom);
  dialog.show();
  QTest::qWait(1);
  EXPECT_LE(dialog.height(), kRoom.height());
  EXPECT_LE(dialog.width(), kRoom.width());
  auto* buttons = dialog.findChild<QDialogButtonBox*>();
  ASSERT_NE(buttons, nullptr);
  EXPECT_TRUE(dialog.rect().contains(buttons->geometry()));
  EXPECT_EQ(dialog.Chosen(), QColor(10, 20, 30)) << "the colour that there is";
  EXPECT_FALSE(dialog.findChild<QScrollArea*>()->horizontalScrollBar()->isVisible());
}

}  // namespace
}  // namespace kelto::editor
