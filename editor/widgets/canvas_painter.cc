#include "editor/widgets/canvas_painter.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPainterPath>
#include <algorithm>
#include <array>

#include "editor/widgets/colours.h"

namespace kelto::editor {
namespace {

constexpr size_t kMostTicks = 40;
/// Views smaller than this on the canvas have no number, unless selected.
constexpr double kSmallView = 26.0;
const QColor kShade(0, 0, 0, 150);
const QColor kSnapLine(0xff, 0x4f, 0xc3);

/// Lines over any photo: a shade below and the colour on top.
void DrawLine(QPainter& painter, const QPainterPath& path, const QColor& colour, double width,
              Qt::PenStyle style = Qt::SolidLine) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(kShade, width + 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
  painter.setPen(QPen(colour, width, style, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

/// A label with its corner at `corner`, growing right and down, or left and up.
void DrawLabel(QPainter& painter, const QString& text, const QColor& colour, QPointF corner,
               bool rightAndDown) {
  const QFontMetricsF metrics(painter.font());
  const QSizeF size(std::max(metrics.height(), metrics.horizontalAdvance(text) + 10.0),
                    metrics.height() + 2.0);
  const QRectF box(rightAndDown ? corner : corner - QPointF(size.width(), size.height()), size);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawRoundedRect(box, 3.0, 3.0);
  painter.setPen(TextOn(colour));
  painter.drawText(box, Qt::AlignCenter, text);
}

QPointF Middle(const host::PhotoRect& view, const CanvasTransform& transform) {
  const CanvasPoint at = transform.ToCanvas({view.CentreX(), view.CentreY()});
  return {at.x, at.y};
}

/// The way, and by another colour where the film enlarges the photo's pixels.
void DrawWay(QPainter& painter, const CanvasOverlay& overlay) {
  const FilmWay& way = overlay.scene.way;
  if (way.size() < 2) return;
  QPainterPath all, enlarged;
  bool inEnlarged = false;
  QPointF last;
  for (size_t i = 0; i < way.size(); ++i) {
    const QPointF at = Middle(way[i].part, overlay.transform);
    // Samples closer than a canvas pixel draw nothing new.
    const bool near = i > 0 && i + 1 < way.size() && (at - last).manhattanLength() < 1.0;
    const bool enlarges = Enlargement(way[i].part, overlay.scene.limits) > 1.0;
    if (near && enlarges == inEnlarged) continue;
    i == 0 ? all.moveTo(at) : all.lineTo(at);
    if (enlarges) inEnlarged ? enlarged.lineTo(at) : enlarged.moveTo(at);
    inEnlarged = enlarges;
    last = at;
  }
  DrawLine(painter, all, Qt::white, 1.6);
  painter.setPen(QPen(EnlargedColour(), 2.0));
  painter.drawPath(enlarged);
  for (const WayTick& tick : TicksOn(way, kMostTicks)) {
    const CanvasPoint at = overlay.transform.ToCanvas(tick.middle);
    painter.setPen(QPen(kShade, 1.0));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(at.x, at.y), 2.6, 2.6);
  }
}

void DrawHandles(QPainter& painter, const QRectF& view, const QColor& colour) {
  painter.setPen(QPen(colour, 1.5));
  painter.setBrush(Qt::white);
  for (const QPointF& corner :
       std::array{view.topLeft(), view.topRight(), view.bottomLeft(), view.bottomRight()}) {
    painter.drawRect(QRectF(corner - QPointF(kHandle, kHandle), QSizeF(2 * kHandle, 2 * kHandle)));
  }
}

void DrawView(QPainter& painter, const CanvasOverlay& overlay, int view) {
  const CanvasScene& scene = overlay.scene;
  const host::PhotoRect& part = scene.views[view];
  const QRectF rect = OnCanvas(part, overlay.transform);
  if (!rect.adjusted(-20, -20, 20, 20).intersects(overlay.canvas)) return;
  const bool selected = view == scene.selected;
  const QColor colour = ViewColour(view, static_cast<int>(scene.views.size()));
  QPainterPath path;
  path.addRect(rect);
  DrawLine(painter, path, colour, selected ? 2.6 : 1.6);
  if (selected) DrawHandles(painter, rect, colour);
  if (!selected && std::min(rect.width(), rect.height()) < kSmallView) return;
  DrawLabel(painter, QString::number(view + 1), colour, rect.topLeft() + QPointF(6.0, 6.0), true);
  const double factor = Enlargement(part, scene.limits);
  if (factor <= 1.005) return;
  const QString text =
      QStringLiteral("\u00d7") + QLocale().toString(factor, 'f', factor < 9.95 ? 1 : 0);
  DrawLabel(painter, text, EnlargedColour(), rect.bottomRight() - QPointF(6.0, 6.0), false);
}

}  // namespace

QRectF OnCanvas(const host::PhotoRect& part, const CanvasTransform& transform) {
  const CanvasPoint at = transform.ToCanvas({part.x, part.y});
  return {at.x, at.y, part.width * transform.scale, part.height * transform.scale};
}

void DrawOverlay(QPainter& painter, const CanvasOverlay& overlay) {
  painter.setRenderHint(QPainter::Antialiasing);
  const CanvasScene& scene = overlay.scene;
  if (overlay.seconds >= 0.0 && !scene.way.empty()) {
    QPainterPath path;
    path.addRect(OnCanvas(ViewAt(scene.way, overlay.seconds), overlay.transform));
    DrawLine(painter, path, Qt::white, 1.0, Qt::DashLine);
  }
  for (int view = static_cast<int>(scene.views.size()) - 1; view >= 0; --view) {
    if (view != scene.selected) DrawView(painter, overlay, view);
  }
  DrawWay(painter, overlay);
  if (scene.selected >= 0 && scene.selected < static_cast<int>(scene.views.size())) {
    DrawView(painter, overlay, scene.selected);
  }
  painter.setPen(QPen(kSnapLine, 1.0));
  if (overlay.snappedX) {
    const double x = overlay.transform.ToCanvas({*overlay.snappedX, 0.0}).x;
    painter.drawLine(QPointF(x, overlay.canvas.top()), QPointF(x, overlay.canvas.bottom()));
  }
  if (overlay.snappedY) {
    const double y = overlay.transform.ToCanvas({0.0, *overlay.snappedY}).y;
    painter.drawLine(QPointF(overlay.canvas.left(), y), QPointF(overlay.canvas.right(), y));
  }
}

}  // namespace kelto::editor
