#include "editor/widgets/canvas_painter.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "editor/widgets/colours.h"

namespace kelto::editor {
namespace {

constexpr size_t kMostTicks = 40;
/// Canvas pixels of a line of the way at the least, and how many lines are drawn smoothly
/// and shaded.
constexpr double kShortest = 2.5;
constexpr qsizetype kManyLines = 400;
/// Canvas pixels between two ticks at the least.
constexpr double kBetweenTicks = 5.0;
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

/// The frame of `rect`, as lines over any photo. Filled rather than stroked, which takes a
/// hundredth of the time where there are hundreds.
void DrawFrame(QPainter& painter, const QRectF& rect, const QColor& colour, double width) {
  const auto fill = [&](double out, double in, const QColor& with) {
    const QRectF outer = rect.adjusted(-out, -out, out, out);
    const QRectF inner = rect.adjusted(in, in, -in, -in);
    painter.fillRect(QRectF(outer.topLeft(), QPointF(outer.right(), inner.top())), with);
    painter.fillRect(QRectF(QPointF(outer.left(), inner.bottom()), outer.bottomRight()), with);
    painter.fillRect(QRectF(outer.left(), inner.top(), inner.left() - outer.left(), inner.height()),
                     with);
    painter.fillRect(
        QRectF(inner.right(), inner.top(), outer.right() - inner.right(), inner.height()), with);
  };
  painter.setRenderHint(QPainter::Antialiasing, false);
  fill(width / 2 + 1.0, width / 2 + 1.0, kShade);
  fill(width / 2, width / 2, colour);
  painter.setRenderHint(QPainter::Antialiasing);
}

struct Label {
  QString text;
  QColor colour;
  QRectF box;
};

/// A label with its corner at `corner`, growing right and down, or left and up.
Label LabelAt(const QPainter& painter, const QString& text, const QColor& colour, QPointF corner,
              bool rightAndDown) {
  const QFontMetricsF metrics(painter.font());
  const QSizeF size(std::max(metrics.height(), metrics.horizontalAdvance(text) + 10.0),
                    metrics.height() + 2.0);
  return {
      text, colour, {rightAndDown ? corner : corner - QPointF(size.width(), size.height()), size}};
}

void DrawLabel(QPainter& painter, const Label& label) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(label.colour);
  painter.drawRoundedRect(label.box, 3.0, 3.0);
  painter.setPen(TextOn(label.colour));
  painter.drawText(label.box, Qt::AlignCenter, label.text);
}

QPointF Middle(const host::PhotoRect& view, const CanvasTransform& transform) {
  const CanvasPoint at = transform.ToCanvas({view.CentreX(), view.CentreY()});
  return {at.x, at.y};
}

/// Whether the way stays within a few pixels of the canvas.
bool HasNoLength(const CanvasOverlay& overlay) {
  const QPointF first = Middle(overlay.scene.way.front().part, overlay.transform);
  for (const WaySample& sample : overlay.scene.way) {
    const QPointF away = Middle(sample.part, overlay.transform) - first;
    if (std::hypot(away.x(), away.y()) >= kBetweenTicks) return false;
  }
  return true;
}

void DrawHandles(QPainter& painter, const QRectF& view, const QColor& colour) {
  painter.setPen(QPen(colour, 1.5));
  painter.setBrush(Qt::white);
  for (const QPointF& corner :
       std::array{view.topLeft(), view.topRight(), view.bottomLeft(), view.bottomRight()}) {
    painter.drawRect(QRectF(corner - QPointF(kHandle, kHandle), QSizeF(2 * kHandle, 2 * kHandle)));
  }
}

/// Where labels of a view stand, by their corners: its number, and how much the film enlarges it.
QPointF NumberCorner(const QRectF& view) { return view.topLeft() + QPointF(6.0, 6.0); }
QPointF FactorCorner(const QRectF& view) { return view.bottomRight() - QPointF(6.0, 6.0); }

Label NumberOf(const QPainter& painter, const CanvasOverlay& overlay, int view) {
  const CanvasScene& scene = overlay.scene;
  return LabelAt(painter, QString::number(view + 1),
                 ViewColour(view, static_cast<int>(scene.views.size())),
                 NumberCorner(OnCanvas(scene.views[view], overlay.transform)), true);
}

std::optional<Label> FactorOf(const QPainter& painter, const CanvasOverlay& overlay, int view) {
  const host::PhotoRect& part = overlay.scene.views[view];
  const double factor = Enlargement(part, overlay.scene.limits);
  if (factor <= 1.005) return std::nullopt;
  const QString text =
      QStringLiteral("\u00d7") + QLocale().toString(factor, 'f', factor < 9.95 ? 1 : 0);
  return LabelAt(painter, text, EnlargedColour(), FactorCorner(OnCanvas(part, overlay.transform)),
                 false);
}

/// What labels stand on, for those to come.
class LabelRoom {
 public:
  /// Whether there may be room for a label with this corner, which is quickly seen.
  bool IsFreeAt(QPointF corner) const {
    return std::none_of(taken_.begin(), taken_.end(),
                        [&](const QRectF& box) { return box.contains(corner); });
  }
  bool Take(const QRectF& box) {
    const bool free = std::none_of(taken_.begin(), taken_.end(),
                                   [&](const QRectF& other) { return other.intersects(box); });
    if (free) taken_.push_back(box);
    return free;
  }

 private:
  std::vector<QRectF> taken_;
};

/// `room` is null for the selected view, whose labels stand above all others.
void DrawView(QPainter& painter, const CanvasOverlay& overlay, int view, LabelRoom* room) {
  const CanvasScene& scene = overlay.scene;
  const QRectF rect = OnCanvas(scene.views[view], overlay.transform);
  if (!rect.adjusted(-20, -20, 20, 20).intersects(overlay.canvas)) return;
  const QColor colour = ViewColour(view, static_cast<int>(scene.views.size()));
  DrawFrame(painter, rect, colour, room == nullptr ? 3.0 : 2.0);
  if (room == nullptr) DrawHandles(painter, rect, colour);
  if (room != nullptr && std::min(rect.width(), rect.height()) < kSmallView) return;
  const auto draw = [&](const Label& label) {
    if (room == nullptr || room->Take(label.box)) DrawLabel(painter, label);
  };
  if (room == nullptr || room->IsFreeAt(NumberCorner(rect))) {
    draw(NumberOf(painter, overlay, view));
  }
  if (room != nullptr && !room->IsFreeAt(FactorCorner(rect))) return;
  if (const auto factor = FactorOf(painter, overlay, view)) draw(*factor);
}

}  // namespace

QRectF OnCanvas(const host::PhotoRect& part, const CanvasTransform& transform) {
  const CanvasPoint at = transform.ToCanvas({part.x, part.y});
  return {at.x, at.y, part.width * transform.scale, part.height * transform.scale};
}

void DrawOtherViews(QPainter& painter, const CanvasOverlay& overlay) {
  painter.setRenderHint(QPainter::Antialiasing);
  LabelRoom room;
  for (int view = static_cast<int>(overlay.scene.views.size()) - 1; view >= 0; --view) {
    if (view != overlay.scene.selected) DrawView(painter, overlay, view, &room);
  }
}

void DrawWay(QPainter& painter, const CanvasOverlay& overlay) {
  const FilmWay& way = overlay.scene.way;
  painter.setRenderHint(QPainter::Antialiasing);
  // A view that zooms in its place goes nowhere.
  if (way.size() < 2 || HasNoLength(overlay)) return;
  // By another colour where the film enlarges the photo's pixels.
  QList<QLineF> all, enlarged;
  QPointF last = Middle(way.front().part, overlay.transform);
  for (size_t i = 1; i < way.size(); ++i) {
    const QPointF at = Middle(way[i].part, overlay.transform);
    if (i + 1 < way.size() && (at - last).manhattanLength() < kShortest) continue;
    const bool enlarges = Enlargement(way[i].part, overlay.scene.limits) > 1.0;
    (enlarges ? enlarged : all).append({last, at});
    last = at;
  }
  // Line by line: a path that crosses itself hundreds of times takes a second to fill.
  const bool many = all.size() + enlarged.size() > kManyLines;
  painter.setRenderHint(QPainter::Antialiasing, !many);
  for (const QList<QLineF>& lines : {all, enlarged}) {
    if (many) continue;
    painter.setPen(QPen(kShade, 3.6));
    painter.drawLines(lines);
  }
  painter.setPen(QPen(Qt::white, many ? 0.0 : 1.6));
  painter.drawLines(all);
  painter.setPen(QPen(EnlargedColour(), many ? 0.0 : 1.8));
  painter.drawLines(enlarged);
  painter.setRenderHint(QPainter::Antialiasing);
  std::optional<CanvasPoint> before;
  for (const WayTick& tick : TicksOn(way, kMostTicks)) {
    const CanvasPoint at = overlay.transform.ToCanvas(tick.middle);
    if (before && std::hypot(at.x - before->x, at.y - before->y) < kBetweenTicks) continue;
    before = at;
    painter.setPen(QPen(kShade, 1.0));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(at.x, at.y), 2.6, 2.6);
  }
}

void DrawOverlay(QPainter& painter, const CanvasOverlay& overlay) {
  painter.setRenderHint(QPainter::Antialiasing);
  const CanvasScene& scene = overlay.scene;
  if (overlay.seconds >= 0.0 && !scene.way.empty()) {
    QPainterPath path;
    path.addRect(OnCanvas(ViewAt(scene.way, overlay.seconds), overlay.transform));
    DrawLine(painter, path, Qt::white, 1.0, Qt::DashLine);
  }
  const bool selects = scene.selected >= 0 && scene.selected < static_cast<int>(scene.views.size());
  if (selects) DrawView(painter, overlay, scene.selected, nullptr);
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
