#include "editor/widgets/preview_view.h"

#include <QAbstractButton>
#include <QLabel>
#include <QSlider>
#include <vector>

#include "editor/widgets/icons.h"
#include "editor/widgets/picture_area.h"
#include "tests/editor/support/widgets.h"

namespace kelto::editor {
namespace {

class PreviewWidget : public WidgetTest {
 protected:
  PreviewWidget() {
    host::FilmFormat format;
    format.rate = {25, 1};
    view_.SetFilm(format, 100);
    Show(view_, {500, 400});
    QObject::connect(&view_, &PreviewView::FrameAsked, &view_, [this](int32_t frame) {
      asked_.push_back(frame);
      view_.SetFrame(QImage(16, 9, QImage::Format_RGB32), frame);
    });
    QObject::connect(&view_, &PreviewView::PlayAsked, &view_, [this] {
      ++plays_;
      view_.SetPlaying(true);
    });
    QObject::connect(&view_, &PreviewView::PauseAsked, &view_, [this] {
      ++pauses_;
      view_.SetPlaying(false);
    });
    QObject::connect(&view_, &PreviewView::LoopAsked, &view_, [this](bool loop) { loop_ = loop; });
  }

  QString Place() { return view_.findChild<QLabel*>()->text(); }

  PreviewView view_;
  std::vector<int32_t> asked_;
  int plays_ = 0, pauses_ = 0;
  bool loop_ = false;
};

TEST_F(PreviewWidget, KeysGoThroughTheFilm) {
  for (const Qt::Key key : {Qt::Key_Period, Qt::Key_Right, Qt::Key_Comma, Qt::Key_End, Qt::Key_Left,
                            Qt::Key_Home, Qt::Key_Home, Qt::Key_Comma}) {
    QTest::keyClick(&view_, key);
  }
  EXPECT_EQ(asked_, (std::vector<int32_t>{1, 26, 25, 99, 74, 0}))
      << "no frame is asked for that is there, or that is none";
}

TEST_F(PreviewWidget, SpacePlaysAndPauses) {
  QTest::keyClick(&view_, Qt::Key_Space);
  QTest::keyClick(&view_, Qt::Key_Space);
  EXPECT_EQ(plays_, 1);
  EXPECT_EQ(pauses_, 1);
  QTest::keyClick(&view_, Qt::Key_L);
  EXPECT_TRUE(loop_);
}

TEST_F(PreviewWidget, ShowsTimecodeAndFrame) {
  QTest::keyClick(&view_, Qt::Key_Right);
  EXPECT_TRUE(Place().contains("00:00:01:00")) << Place().toStdString();
  EXPECT_TRUE(Place().contains("frame 25 of 100"));
}

TEST_F(PreviewWidget, TheSliderScrubs) {
  view_.findChild<QSlider*>()->setValue(60);
  EXPECT_EQ(asked_, std::vector<int32_t>{60});
  asked_.clear();
  view_.SetFrame({}, 70);
  EXPECT_EQ(view_.findChild<QSlider*>()->value(), 70);
  EXPECT_TRUE(asked_.empty()) << "what is shown is not asked for";
}

TEST_F(PreviewWidget, AShorterFilmEndsTheFrameThere) {
  QTest::keyClick(&view_, Qt::Key_End);
  view_.SetFilm({}, 10);
  EXPECT_TRUE(Place().contains("frame 9 of 10")) << Place().toStdString();
}

TEST_F(PreviewWidget, DrawsTheFrameInItsShapeAndTheActionSafeArea) {
  QImage red(32, 18, QImage::Format_RGB32);
  red.fill(Qt::red);
  view_.SetFrame(red, 0);
  const auto count = [&](QRgb colour) {
    const QImage image = view_.grab().toImage();
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) found += image.pixel(x, y) == colour;
    }
    return found;
  };
  const int plain = count(qRgb(255, 0, 0));
  EXPECT_NEAR(plain, 500 * 500 * 9 / 16, 1500);
  view_.SetActionSafe(true);
  EXPECT_LT(count(qRgb(255, 0, 0)), plain - 1000);
}

TEST_F(PreviewWidget, ShowsTheFramesPixelsAsTheyAre) {
  PictureArea area;
  area.resize(421, 251);
  area.SetShape(16.0 / 9.0);
  // Of the even sides that frames have, and rows of single pixels, which any stretching blurs.
  QImage frame(420, 236, QImage::Format_RGB32);
  for (int y = 0; y < frame.height(); ++y) {
    for (int x = 0; x < frame.width(); ++x) {
      frame.setPixel(x, y, (x + y) % 2 == 0 ? 0xffffffff : 0xff204080);
    }
  }
  area.SetFrame(frame);
  const QImage shown = area.grab().toImage().convertToFormat(QImage::Format_RGB32);
  const int top = (shown.height() - frame.height()) / 2;
  bool found = false;
  for (int y = top - 1; y <= top + 1; ++y) {
    for (int x = 0; x <= 1; ++x) {
      found = found || shown.copy(QRect(QPoint(x, y), frame.size())) == frame;
    }
  }
  EXPECT_TRUE(found);
}

TEST_F(PreviewWidget, EveryButtonHasANameAndAHint) {
  const auto buttons = view_.findChildren<QAbstractButton*>();
  EXPECT_EQ(buttons.size(), 8);
  for (const QAbstractButton* button : buttons) {
    EXPECT_FALSE(button->accessibleName().isEmpty());
    EXPECT_FALSE(button->toolTip().isEmpty());
    EXPECT_FALSE(button->icon().isNull());
  }
}

TEST_F(PreviewWidget, FillsTheScreenAndComesBack) {
  view_.SwitchFullScreen();
  QCoreApplication::processEvents();
  QWidget* picture = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isFullScreen()) picture = window;
  }
  ASSERT_NE(picture, nullptr);
  QTest::keyClick(picture, Qt::Key_Space);
  EXPECT_EQ(plays_, 1);
  QTest::keyClick(picture, Qt::Key_Escape);
  EXPECT_FALSE(picture->isWindow());
  EXPECT_TRUE(picture->isVisible());
}

TEST_F(PreviewWidget, IconsAreDrawnOnceForEachColour) {
  Icons icons;
  const QPalette light(Qt::white), dark(Qt::black);
  const qint64 first = icons.Of(IconShape::kPlay, light).cacheKey();
  EXPECT_NE(icons.Of(IconShape::kPlay, dark).cacheKey(), first);
  EXPECT_NE(icons.Of(IconShape::kPause, light).cacheKey(), first);
  EXPECT_EQ(icons.Of(IconShape::kPlay, light).cacheKey(), first);
}

}  // namespace
}  // namespace kelto::editor
