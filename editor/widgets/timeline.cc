#include "editor/widgets/timeline.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <utility>

#include "editor/rules/timecode.h"
#include "editor/widgets/timeline_private.h"

namespace kelto::editor {
namespace {

constexpr double kWheelStep = 1.2;

}  // namespace

Timeline::Timeline(QWidget* parent) : QWidget(parent), p_(std::make_unique<Private>(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAccessibleName(tr("Timeline"));
}

Timeline::~Timeline() = default;

const TimelineScene& Timeline::Scene() const { return p_->scene_; }

void Timeline::SetWay(const FilmWay& way) {
  if (way == p_->scene_.way) return;
  p_->scene_.way = way;
  p_->RedrawSpeed();
}

void Timeline::SetLow(bool low) {
  if (low == p_->low_) return;
  p_->low_ = low;
  updateGeometry();
  p_->Refit();
  p_->Redraw();
}

void Timeline::SetScene(const TimelineScene& scene) {
  const bool otherRows = HeightOf(scene, p_->low_) != HeightOf(p_->scene_, p_->low_);
  TimelineScene before = p_->scene_;
  const StopTimes dragged = before.stops;
  const bool dragging =
      p_->gesture_ && p_->doing_ == Private::Doing::kEdge && dragged.size() == scene.stops.size();
  const bool keysGone = scene.lanes.size() != p_->scene_.lanes.size();
  p_->scene_ = scene;
  // The edge stays under the pointer, whatever comes back meanwhile.
  if (dragging) p_->scene_.stops = dragged;
  const bool otherStops = p_->doing_ == Private::Doing::kEdge && !dragging && p_->gesture_;
  if (otherStops || (keysGone && p_->doing_ == Private::Doing::kKeys)) {
    p_->doing_ = Private::Doing::kNothing;
    p_->gesture_.reset();
  }
  std::vector<KeyPlace> keys = p_->selected_;
  std::erase_if(keys, [&](const KeyPlace& place) { return !p_->IsThere(place); });
  p_->Select(std::move(keys));
  if (p_->doing_ == Private::Doing::kNothing) p_->Refit();
  // Laying out all of the window for each step of a drag takes longer than the step.
  if (otherRows) updateGeometry();
  // Hundreds of stops take longer to draw than their film's speed, which alone is another when a
  // view has been moved.
  const bool otherWay = std::exchange(before.way, p_->scene_.way) != p_->scene_.way;
  if (before != p_->scene_) {
    p_->Redraw();
  } else if (otherWay) {
    p_->RedrawSpeed();
  }
}

void Timeline::SetTime(double seconds) { p_->SetTime(seconds); }

const std::vector<KeyPlace>& Timeline::SelectedKeys() const { return p_->selected_; }

void Timeline::SelectKey(const KeyPlace& key) {
  if (p_->IsThere(key)) p_->Select({key});
}

QSize Timeline::sizeHint() const {
  return {800, static_cast<int>(HeightOf(p_->scene_, p_->low_)) + 12};
}
QSize Timeline::minimumSizeHint() const {
  return {240, static_cast<int>(HeightOf(p_->scene_, p_->low_))};
}

bool Timeline::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto& help = static_cast<QHelpEvent&>(*event);
    const double x = help.pos().x();
    const bool inRow = p_->Rows().stops.contains(QPointF(help.pos()));
    const int stop = inRow ? StopAt(p_->scene_, p_->Rows(), p_->axis_, x) : -1;
    const int way = inRow && stop < 0 ? WayAt(p_->scene_, p_->axis_, x) : -1;
    const auto text = [](double seconds) { return QString::fromStdString(SecondsText(seconds)); };
    if (stop >= 0) {
      QToolTip::showText(
          help.globalPos(),
          tr("View %1, looked at for %2").arg(stop + 1).arg(text(p_->scene_.stops[stop].hold)));
    } else if (way >= 0) {
      const auto& easing = p_->scene_.easing;
      const QString word =
          static_cast<size_t>(way) < easing.size() ? "\n" + easing[way].word : QString();
      QToolTip::showText(help.globalPos(), tr("From view %1 to view %2 in %3")
                                                   .arg(way + 1)
                                                   .arg(way + 2)
                                                   .arg(text(p_->scene_.stops[way].go)) +
                                               word);
    } else {
      QToolTip::hideText();
    }
    return true;
  }
  if (event->type() == QEvent::Resize) p_->Refit();
  return QWidget::event(event);
}

void Timeline::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  p_->Paint(painter);
  if (!hasFocus()) return;
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(palette().color(QPalette::Highlight));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void Timeline::mousePressEvent(QMouseEvent* event) {
  p_->Press(*event);
  if (event->button() != Qt::RightButton) return;
  const int way = WayAt(p_->scene_, p_->axis_, event->position().x());
  if (way >= 0 && p_->Rows().stops.contains(event->position())) {
    emit EasingAsked(way, event->globalPosition().toPoint());
  }
}

void Timeline::mouseMoveEvent(QMouseEvent* event) { p_->Move(*event); }

void Timeline::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) p_->Release();
}

void Timeline::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const TimelineRows rows = p_->Rows();
  p_->doing_ = Private::Doing::kNothing;
  for (size_t lane = 0; lane < rows.lanes.size(); ++lane) {
    if (!rows.lanes[lane].contains(at) || KeyAt(p_->scene_, rows, p_->axis_, at)) continue;
    const double time = p_->axis_.ToSeconds(at.x()) / std::max(p_->scene_.length, 1e-3);
    emit KeyAdded(lane, std::clamp(time, 0.0, 1.0));
    return;
  }
  const int way = WayAt(p_->scene_, p_->axis_, at.x());
  if (way >= 0 && rows.stops.contains(at)) emit EasingAsked(way, event->globalPosition().toPoint());
}

void Timeline::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (p_->doing_ != Private::Doing::kNothing) return;
  const TimelineRows rows = p_->Rows();
  const double down = event->angleDelta().y(), right = event->angleDelta().x();
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    p_->axis_ = ZoomedAxis(p_->axis_, event->position().x(), std::pow(kWheelStep, down / 120.0),
                           p_->scene_.length, p_->scene_.frameSeconds, rows.width);
    p_->fitted_ = p_->axis_ == FittedAxis(p_->scene_.length, rows.left, rows.width);
  } else {
    p_->axis_ = MovedAxis(p_->axis_, down + right, p_->scene_.length, rows.width);
  }
  p_->Redraw();
}

void Timeline::changeEvent(QEvent* event) {
  // Of colours, letters or language, or of whether it is enabled.
  p_->Redraw();
  QWidget::changeEvent(event);
}

void Timeline::keyPressEvent(QKeyEvent* event) {
  if (!p_->Key(*event)) QWidget::keyPressEvent(event);
}

}  // namespace kelto::editor
