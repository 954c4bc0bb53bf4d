#include "editor/widgets/icons.h"

#include <QPainter>
#include <QPainterPath>

namespace kelto::editor {
namespace {

/// On a field of 16 by 16.
void Triangle(QPainterPath& path, double x, double width) {
  path.moveTo(x, 3.0);
  path.lineTo(x + width, 8.0);
  path.lineTo(x, 13.0);
  path.closeSubpath();
}

void DrawFilled(QPainter& painter, IconShape shape) {
  QPainterPath path;
  switch (shape) {
    case IconShape::kPlay:
      Triangle(path, 4.0, 9.0);
      break;
    case IconShape::kPause:
      path.addRect(4.0, 3.0, 3.0, 10.0);
      path.addRect(9.0, 3.0, 3.0, 10.0);
      break;
    case IconShape::kFirst:
      path.addRect(3.0, 3.0, 2.0, 10.0);
      Triangle(path, 13.0, -7.0);
      break;
    case IconShape::kLast:
      path.addRect(11.0, 3.0, 2.0, 10.0);
      Triangle(path, 3.0, 7.0);
      break;
    case IconShape::kBack:
      path.addRect(11.0, 3.0, 2.0, 10.0);
      Triangle(path, 9.5, -6.5);
      break;
    default:
      path.addRect(3.0, 3.0, 2.0, 10.0);
      Triangle(path, 6.5, 6.5);
      break;
  }
  painter.fillPath(path, painter.pen().color());
}

void DrawLines(QPainter& painter, IconShape shape) {
  QPainterPath path;
  switch (shape) {
    case IconShape::kLoop:
      path.arcMoveTo(3.0, 3.0, 10.0, 10.0, 30.0);
      path.arcTo(3.0, 3.0, 10.0, 10.0, 30.0, 290.0);
      path.moveTo(9.6, 9.8);
      path.lineTo(12.4, 10.6);
      path.lineTo(13.4, 7.8);
      break;
    case IconShape::kSafeArea:
      path.addRect(1.5, 3.5, 13.0, 9.0);
      path.addRect(4.0, 5.5, 8.0, 5.0);
      break;
    default:
      for (const double x : {2.5, 13.5}) {
        const double in = x < 8.0 ? 4.0 : -4.0;
        for (const double y : {3.0, 13.0}) {
          const double down = y < 8.0 ? 3.5 : -3.5;
          path.moveTo(x + in, y);
          path.lineTo(x, y);
          path.lineTo(x, y + down);
        }
      }
      break;
  }
  painter.drawPath(path);
}

QPixmap Drawn(IconShape shape, const QColor& colour, int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(side / 16.0, side / 16.0);
  painter.setPen(QPen(colour, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  const bool lines =
      shape == IconShape::kLoop || shape == IconShape::kSafeArea || shape == IconShape::kFullScreen;
  lines ? DrawLines(painter, shape) : DrawFilled(painter, shape);
  return pixmap;
}

}  // namespace

const QIcon& Icons::Of(IconShape shape, const QPalette& palette) {
  const QColor enabled = palette.color(QPalette::Active, QPalette::ButtonText);
  const QColor disabled = palette.color(QPalette::Disabled, QPalette::ButtonText);
  QIcon& icon = drawn_[{shape, enabled.rgba(), disabled.rgba()}];
  if (!icon.isNull()) return icon;
  for (const int side : {16, 24, 32, 48}) {
    icon.addPixmap(Drawn(shape, enabled, side));
    icon.addPixmap(Drawn(shape, disabled, side), QIcon::Disabled);
  }
  return icon;
}

}  // namespace kelto::editor
