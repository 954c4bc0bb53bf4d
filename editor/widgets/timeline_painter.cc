#include "editor/widgets/timeline_painter.h"

#include <QCoreApplication>
#include <QLocale>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "editor/rules/film_way.h"
#include "editor/widgets/colours.h"

namespace kelto::editor {
namespace {

constexpr double kBetweenLabels = 70.0;
/// Pixels in which no time finds room.
constexpr double kNarrowLabel = 24.0;
constexpr int kManyStops = 100;

QString Seconds(double seconds) {
  return QCoreApplication::translate("Timeline", "%1 s")
      .arg(QLocale().toString(std::round(seconds * 100) / 100, 'g', 6));
}

void DrawRuler(QPainter& painter, const TimelineDrawing& drawing) {
  const QRectF& row = drawing.rows.ruler;
  const double shown = drawing.rows.width / drawing.axis.pixelsPerSecond;
  const auto most = static_cast<size_t>(std::max(1.0, drawing.rows.width / kBetweenLabels));
  const double step = TickStep(std::min(shown, std::max(drawing.scene.length, 1e-3)), most);
  const QColor text = drawing.palette.color(QPalette::WindowText);
  QColor faint = text;
  faint.setAlpha(90);
  const double first = std::floor(drawing.axis.begin / step) * step;
  for (int tick = 0;; ++tick) {
    const double seconds = first + tick * step;
    const double x = drawing.axis.ToX(seconds);
    if (x > drawing.rows.left + drawing.rows.width + 1.0 || seconds > drawing.scene.length + 1e-6) {
      break;
    }
    if (x < drawing.rows.left - 1.0) continue;
    painter.setPen(faint);
    painter.drawLine(QPointF(x, row.bottom() - 5.0), QPointF(x, row.bottom()));
    painter.setPen(text);
    const QString label = Seconds(seconds);
    if (x + 3.0 + painter.fontMetrics().horizontalAdvance(label) > row.right()) continue;
    painter.drawText(QPointF(x + 3.0, row.bottom() - 6.0), label);
  }
}

void DrawEasing(QPainter& painter, const QRectF& way, const WayEasing& easing,
                const QColor& colour) {
  if (easing.curve.size() < 2 || way.width() < 16.0) return;
  const QRectF field = way.adjusted(2.0, 5.0, -2.0, -5.0);
  QPainterPath path;
  for (size_t i = 0; i < easing.curve.size(); ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(easing.curve.size() - 1);
    const QPointF at(field.left() + share * field.width(),
                     field.bottom() - easing.curve[i] * field.height());
    i == 0 ? path.moveTo(at) : path.lineTo(at);
  }
  painter.setPen(QPen(colour, 1.4));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(path);
}

void DrawWays(QPainter& painter, const TimelineDrawing& drawing) {
  const TimelineScene& scene = drawing.scene;
  const QColor line = drawing.palette.color(QPalette::Text);
  // A little of the text's colour is seen in light and dark alike.
  QColor back = line, curve = line;
  back.setAlpha(40);
  curve.setAlpha(130);
  const double inset = drawing.rows.stops.height() / 5;
  double arrival = 0.0;
  for (size_t stop = 0; stop + 1 < scene.stops.size(); ++stop) {
    const double leaves = arrival + scene.stops[stop].hold;
    arrival = leaves + scene.stops[stop].go;
    const QRectF way(drawing.axis.ToX(leaves), drawing.rows.stops.top() + inset,
                     scene.stops[stop].go * drawing.axis.pixelsPerSecond,
                     drawing.rows.stops.height() - 2 * inset);
    if (way.right() < 0.0 || way.left() > drawing.rows.stops.right() || way.width() < 1.0) continue;
    painter.fillRect(way, back);
    if (stop < scene.easing.size()) DrawEasing(painter, way, scene.easing[stop], curve);
    if (way.width() < kNarrowLabel) continue;  // quicker than to measure one
    const QString label = Seconds(scene.stops[stop].go);
    if (way.width() < painter.fontMetrics().horizontalAdvance(label) + 24) continue;
    painter.setPen(line);
    // Above where the curve begins, not across it.
    painter.drawText(way.adjusted(8.0, -5.0, -8.0, -5.0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, label);
  }
}

void DrawStops(QPainter& painter, const TimelineDrawing& drawing) {
  const TimelineScene& scene = drawing.scene;
  const int count = static_cast<int>(scene.stops.size());
  // Measured once: hundreds of stops have no room for their numbers.
  const double digit = painter.fontMetrics().horizontalAdvance('1');
  double arrival = 0.0;
  for (int stop = 0; stop < count; ++stop) {
    const StopTime& time = scene.stops[stop];
    const double begin = drawing.axis.ToX(arrival);
    const double width = time.hold * drawing.axis.pixelsPerSecond,
                 shown = std::max(width, kNarrowestStop);
    arrival += time.hold + time.go;
    const QRectF block(begin + (width - shown) / 2, drawing.rows.stops.top() + 2.0, shown,
                       drawing.rows.stops.height() - 4.0);
    if (block.right() < 0.0 || block.left() > drawing.rows.stops.right()) continue;
    const QColor colour = ViewColour(stop, count);
    const bool selected = stop == scene.selected;
    painter.setPen(selected ? QPen(drawing.palette.color(QPalette::Text), 2.0) : QPen(Qt::NoPen));
    painter.setBrush(colour);
    // Of hundreds, each covers the next one's corners.
    if (count > kManyStops && !selected && width < kNarrowestStop) {
      painter.fillRect(block, colour);
      continue;
    }
    painter.drawRoundedRect(block, 4.0, 4.0);
    const QString number = QString::number(stop + 1);
    if (block.width() < static_cast<double>(number.size()) * digit) continue;
    if (block.width() < painter.fontMetrics().horizontalAdvance(number) + 2) continue;
    painter.setPen(TextOn(colour));
    const QString with = number + QStringLiteral("   ") + Seconds(time.hold);
    const bool room = painter.fontMetrics().horizontalAdvance(with) + 12 < block.width();
    painter.drawText(block, Qt::AlignCenter, room ? with : number);
  }
}

void DrawSound(QPainter& painter, const TimelineDrawing& drawing) {
  const std::vector<float>& peaks = drawing.scene.sound;
  const QRectF& row = drawing.rows.sound;
  if (peaks.empty()) return;
  QColor colour = drawing.palette.color(QPalette::Highlight);
  colour.setAlpha(170);
  const int columns = static_cast<int>(std::ceil(drawing.rows.width));
  for (int column = 0; column < columns; ++column) {
    const double x = drawing.rows.left + column;
    const auto at = [&](double where) {
      const double share = drawing.axis.ToSeconds(where) / std::max(drawing.scene.length, 1e-3);
      return static_cast<size_t>(std::clamp(share, 0.0, 1.0) *
                                 static_cast<double>(peaks.size() - 1));
    };
    float peak = 0.0F;
    for (size_t i = at(x); i <= at(x + 1.0); ++i) peak = std::max(peak, peaks[i]);
    const double half = std::max(0.5, peak * row.height() / 2);
    painter.fillRect(QRectF(x, row.center().y() - half, 1.0, 2 * half), colour);
  }
}

void DrawLanes(QPainter& painter, const TimelineDrawing& drawing) {
  const QColor text = drawing.palette.color(QPalette::WindowText);
  QColor back = drawing.palette.color(QPalette::AlternateBase);
  for (size_t lane = 0; lane < drawing.rows.lanes.size(); ++lane) {
    const QRectF& row = drawing.rows.lanes[lane];
    painter.fillRect(row.adjusted(drawing.rows.left - 6.0, 0, 0, 0), back);
    painter.setPen(text);
    const QRectF names(row.left() + 8.0, row.top(), drawing.rows.left - 18.0, row.height());
    painter.drawText(
        names, Qt::AlignVCenter | Qt::AlignLeft,
        painter.fontMetrics().elidedText(drawing.scene.lanes[lane].name, Qt::ElideRight,
                                         static_cast<int>(names.width())));
    const std::vector<double>& times = drawing.scene.lanes[lane].times;
    double last = -1e9;
    for (size_t key = 0; key < times.size(); ++key) {
      const double x = drawing.axis.ToX(times[key] * drawing.scene.length);
      const bool selected =
          std::binary_search(drawing.selected.begin(), drawing.selected.end(), KeyPlace{lane, key});
      if (x < drawing.rows.left - 8.0 || x > row.right() + 8.0) continue;
      if (!selected && x - last < 0.5) continue;  // nothing to be seen of it
      last = x;
      QPainterPath diamond;
      const double y = row.center().y();
      diamond.addPolygon(QPolygonF({{x, y - 6.0}, {x + 6.0, y}, {x, y + 6.0}, {x - 6.0, y}}));
      diamond.closeSubpath();
      painter.setPen(QPen(text, 1.0));
      painter.setBrush(selected ? drawing.palette.color(QPalette::Highlight)
                                : drawing.palette.color(QPalette::Base));
      painter.drawPath(diamond);
    }
  }
}

void DrawPlace(QPainter& painter, const TimelineDrawing& drawing) {
  const double x = drawing.axis.ToX(drawing.seconds);
  if (drawing.seconds < 0.0 || x < drawing.rows.left - 1.0) return;
  const QColor colour = drawing.palette.color(QPalette::WindowText);
  painter.setPen(QPen(colour, 1.0));
  painter.drawLine(QPointF(x, drawing.rows.ruler.top() + 8.0),
                   QPointF(x, drawing.rows.speed.bottom()));
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  const double y = drawing.rows.ruler.top() + 4.0;
  painter.drawPolygon(QPolygonF({{x - 5.0, y}, {x + 5.0, y}, {x, y + 8.0}}));
}

}  // namespace

void DrawSpeed(QPainter& painter, const TimelineDrawing& drawing) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  // Names stay where they are while time moves.
  painter.setClipRect(QRectF(drawing.rows.left - 8.0, 0.0, 1e6, 1e6), Qt::IntersectClip);
  const QRectF row = drawing.rows.speed.adjusted(drawing.rows.left, 2.0, 0.0, -4.0);
  QColor faint = drawing.palette.color(QPalette::WindowText);
  faint.setAlpha(140);
  const FilmWay& way = drawing.scene.way;
  double most = 0.0;
  for (const WaySample& sample : way) most = std::max(most, sample.speed);
  const QColor colour = drawing.palette.color(QPalette::Highlight);
  if (most > 0.0) {
    QPainterPath path;
    path.moveTo(drawing.axis.ToX(way.front().seconds), row.bottom());
    for (const WaySample& sample : way) {
      path.lineTo(drawing.axis.ToX(sample.seconds),
                  row.bottom() - sample.speed / most * (row.height() - 14.0));
    }
    path.lineTo(drawing.axis.ToX(way.back().seconds), row.bottom());
    path.closeSubpath();
    QColor fill = colour;
    fill.setAlpha(60);
    painter.setPen(QPen(colour, 1.4));
    painter.setBrush(fill);
    painter.drawPath(path);
  }
  painter.setPen(faint);
  painter.drawText(row, Qt::AlignLeft | Qt::AlignTop,
                   QCoreApplication::translate("Timeline", "Perceived speed"));
  painter.restore();
}

void DrawTimeline(QPainter& painter, const TimelineDrawing& drawing) {
  painter.setRenderHint(QPainter::Antialiasing);
  DrawRuler(painter, drawing);
  // Names stay where they are while time moves.
  painter.save();
  painter.setClipRect(QRectF(drawing.rows.left - 8.0, 0.0, 1e6, 1e6));
  DrawWays(painter, drawing);
  DrawStops(painter, drawing);
  DrawSound(painter, drawing);
  painter.restore();
  DrawSpeed(painter, drawing);
  DrawLanes(painter, drawing);
}

void DrawMoment(QPainter& painter, const TimelineDrawing& drawing) {
  painter.setRenderHint(QPainter::Antialiasing);
  DrawPlace(painter, drawing);
  if (!drawing.band) return;
  QColor fill = drawing.palette.color(QPalette::Highlight);
  painter.setPen(fill);
  fill.setAlpha(50);
  painter.setBrush(fill);
  painter.drawRect(*drawing.band);
}

}  // namespace kelto::editor
