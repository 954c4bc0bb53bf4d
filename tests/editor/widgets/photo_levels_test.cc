#include "editor/widgets/photo_levels.h"

#include <gtest/gtest.h>

namespace kelto::editor {
namespace {

/// Columns of red that grow brighter to the right.
QImage Ramp(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.setPixel(x, y, qRgb(x * 255 / (width - 1), 0, 0));
  }
  return image;
}

QImage Drawn(const PhotoLevels& photo, const QRectF& target) {
  QImage canvas(400, 300, QImage::Format_RGB32);
  canvas.fill(Qt::blue);
  QPainter painter(&canvas);
  photo.Draw(painter, target, canvas.rect());
  return canvas;
}

TEST(PhotoLevels, DrawThePhotoWhereItLies) {
  for (const int width : {100, 1600, 5000}) {
    const PhotoLevels photo(Ramp(width, width * 3 / 4));
    const QImage fitted = Drawn(photo, {100, 75, 200, 150});
    EXPECT_EQ(fitted.pixel(50, 150), qRgb(0, 0, 255)) << "beside it";
    EXPECT_NEAR(qRed(fitted.pixel(200, 150)), 128, 4) << width;
    EXPECT_NEAR(qRed(fitted.pixel(250, 150)), 191, 4) << width;
    // A quarter of it, enlarged.
    const QImage part = Drawn(photo, {-400, -300, 1600, 1200});
    EXPECT_NEAR(qRed(part.pixel(0, 0)), 64, 4) << width;
    EXPECT_NEAR(qRed(part.pixel(399, 299)), 128, 4) << width;
  }
}

TEST(PhotoLevels, DrawPixelsAsSquaresWhereTheyAreSeen) {
  QImage two(2, 1, QImage::Format_RGB32);
  two.setPixel(0, 0, qRgb(255, 0, 0));
  two.setPixel(1, 0, qRgb(0, 255, 0));
  const QImage drawn = Drawn(PhotoLevels(two), {0, 0, 400, 200});
  EXPECT_EQ(drawn.pixel(198, 100), qRgb(255, 0, 0));
  EXPECT_EQ(drawn.pixel(202, 100), qRgb(0, 255, 0));
}

TEST(PhotoLevels, DrawNothingWithoutAPhoto) {
  EXPECT_TRUE(PhotoLevels(QImage()).IsEmpty());
  EXPECT_EQ(Drawn(PhotoLevels(), {0, 0, 400, 300}).pixel(9, 9), qRgb(0, 0, 255));
}

}  // namespace
}  // namespace kelto::editor
