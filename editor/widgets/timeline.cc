#include "editor/widgets/timeline.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "editor/rules/key_drag.h"
#include "editor/rules/timecode.h"
#include "editor/widgets/timeline_layout.h"
#include "editor/widgets/timeline_painter.h"

namespace kelto::editor {
namespace {

/// Pixels within which an edge is held.
constexpr double kEdgeReach = 6.0;
constexpr double kWheelStep = 1.2;
/// Seconds by which a key makes a stop longer.
constexpr double kKeyStep = 0.1;

}  // namespace

class Timeline::Private {
 public:
  explicit Private(Timeline* owner) : owner_(owner) {}

  TimelineRows Rows() const { return RowsOf(scene_, owner_->size()); }
  void Refit();
  void Press(QMouseEvent& event);
  void PressKey(const KeyPlace& key, Qt::KeyboardModifiers modifiers);
  void Move(QMouseEvent& event);
  void Release();
  void DragKeys(double by);
  void AskTime(double x);
  bool Key(const QKeyEvent& event);
  /// The selected stop held, or its way taking, this much longer.
  void Lengthen(bool way, double by);
  std::optional<TimeEdge> Edge(QPointF at) const;
  /// Places of a lane's selected keys.
  std::vector<size_t> SelectedOf(size_t lane) const;

  Timeline* owner_;
  TimelineScene scene_;
  double seconds_ = 0.0;
  TimeAxis axis_;
  bool fitted_ = true;  ///< all of the film is seen
  std::vector<KeyPlace> selected_, copied_;

  enum class Doing { kNothing, kScrub, kEdge, kKeys, kBand } doing_ = Doing::kNothing;
  QPointF pressedAt_;
  TimeEdge edge_;
  StopTimes before_;                              ///< the stops as the drag began
  TimeAxis axisBefore_;                           ///< edges keep under the pointer
  std::vector<std::vector<double>> lanesBefore_;  ///< times of the lanes' keys then
  std::optional<Gesture> gesture_;
  QRectF band_;
};

void Timeline::Private::Refit() {
  const TimelineRows rows = Rows();
  if (fitted_) {
    axis_ = FittedAxis(scene_.length, rows.left, rows.width);
  } else {
    axis_.left = rows.left;
    axis_ = ZoomedAxis(axis_, rows.left, 1.0, scene_.length, scene_.frameSeconds, rows.width);
  }
}

std::optional<TimeEdge> Timeline::Private::Edge(QPointF at) const {
  if (!Rows().stops.contains(at)) return std::nullopt;
  return EdgeAt(scene_.stops, axis_.ToSeconds(at.x()), kEdgeReach / axis_.pixelsPerSecond);
}

void Timeline::Private::AskTime(double x) {
  emit owner_->TimeAsked(std::clamp(axis_.ToSeconds(x), 0.0, scene_.length));
}

std::vector<size_t> Timeline::Private::SelectedOf(size_t lane) const {
  std::vector<size_t> keys;
  for (const KeyPlace& place : selected_) {
    if (place.lane == lane) keys.push_back(place.key);
  }
  return keys;
}

void Timeline::Private::PressKey(const KeyPlace& key, Qt::KeyboardModifiers modifiers) {
  const auto found = std::lower_bound(selected_.begin(), selected_.end(), key);
  const bool isSelected = found != selected_.end() && *found == key;
  const bool more = modifiers & (Qt::ControlModifier | Qt::ShiftModifier);
  if (isSelected && more) {
    selected_.erase(found);
  } else if (!isSelected && more) {
    selected_.insert(found, key);
  } else if (!isSelected) {
    selected_ = {key};
  }
  doing_ = Doing::kKeys;
  lanesBefore_.clear();
  for (const KeyLane& lane : scene_.lanes) lanesBefore_.push_back(lane.times);
}

void Timeline::Private::Press(QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || doing_ != Doing::kNothing) return;
  const QPointF at = event.position();
  const TimelineRows rows = Rows();
  pressedAt_ = at;
  axisBefore_ = axis_;
  if (const auto edge = Edge(at)) {
    doing_ = Doing::kEdge;
    edge_ = *edge;
    before_ = scene_.stops;
  } else if (rows.stops.contains(at)) {
    const int stop = StopAt(scene_, rows, axis_, at.x());
    if (stop >= 0 && stop != scene_.selected) {
      scene_.selected = stop;
      emit owner_->StopSelected(stop);
    }
  } else if (const auto key = KeyAt(scene_, rows, axis_, at)) {
    PressKey(*key, event.modifiers());
  } else if (std::any_of(rows.lanes.begin(), rows.lanes.end(),
                         [&](const QRectF& lane) { return lane.contains(at); })) {
    doing_ = Doing::kBand;
    band_ = {at, QSizeF()};
    selected_.clear();
  } else {
    doing_ = Doing::kScrub;
    AskTime(at.x());
  }
  owner_->update();
}

void Timeline::Private::DragKeys(double by) {
  if (!gesture_) gesture_ = NewGesture();
  const double gap = scene_.frameSeconds / std::max(scene_.length, 1e-3);
  // All lanes together, as far as the first one that is held can go.
  for (size_t lane = 0; lane < scene_.lanes.size() && lane < lanesBefore_.size(); ++lane) {
    const std::vector<size_t> keys = SelectedOf(lane);
    if (keys.empty()) continue;
    const std::vector<double> moved = editor::KeysMoved(lanesBefore_[lane], keys, by, gap);
    const double went = moved[keys.front()] - lanesBefore_[lane][keys.front()];
    if (std::abs(went) < std::abs(by)) by = went;
  }
  for (size_t lane = 0; lane < scene_.lanes.size() && lane < lanesBefore_.size(); ++lane) {
    const std::vector<size_t> keys = SelectedOf(lane);
    if (keys.empty()) continue;
    scene_.lanes[lane].times = editor::KeysMoved(lanesBefore_[lane], keys, by, gap);
    emit owner_->KeysMoved(lane, scene_.lanes[lane].times, *gesture_);
  }
}

void Timeline::Private::Move(QMouseEvent& event) {
  const QPointF at = event.position();
  switch (doing_) {
    case Doing::kScrub:
      return AskTime(at.x());
    case Doing::kEdge:
      if (!gesture_ && std::abs(at.x() - pressedAt_.x()) < 2.0) return;
      if (!gesture_) gesture_ = NewGesture();
      scene_.stops =
          EdgeDragged(before_, edge_, axisBefore_.ToSeconds(at.x()),
                      event.modifiers().testFlag(Qt::ControlModifier), scene_.frameSeconds);
      emit owner_->StopTimesChanged(scene_.stops, *gesture_);
      break;
    case Doing::kKeys:
      if (!gesture_ && std::abs(at.x() - pressedAt_.x()) < 3.0) return;
      DragKeys((at.x() - pressedAt_.x()) / axis_.pixelsPerSecond / std::max(scene_.length, 1e-3));
      break;
    case Doing::kBand:
      band_ = QRectF(pressedAt_, at).normalized();
      selected_ = KeysIn(scene_, Rows(), axis_, band_);
      break;
    default:
      owner_->setCursor(Edge(at) ? Qt::SplitHCursor : Qt::ArrowCursor);
      return;
  }
  owner_->update();
}

void Timeline::Private::Release() {
  const Doing done = std::exchange(doing_, Doing::kNothing);
  if (gesture_) {
    Gesture gesture = *gesture_;
    gesture_.reset();
    gesture.finished = true;
    if (done == Doing::kEdge) emit owner_->StopTimesChanged(scene_.stops, gesture);
    std::vector<size_t> lanes;
    for (size_t lane = 0; done == Doing::kKeys && lane < scene_.lanes.size(); ++lane) {
      if (!SelectedOf(lane).empty()) lanes.push_back(lane);
    }
    for (const size_t lane : lanes) {
      gesture.finished = lane == lanes.back();
      emit owner_->KeysMoved(lane, scene_.lanes[lane].times, gesture);
    }
  }
  Refit();
  owner_->update();
}

void Timeline::Private::Lengthen(bool way, double by) {
  const int stop = scene_.selected;
  if (stop < 0 || stop >= static_cast<int>(scene_.stops.size())) return;
  const auto place = static_cast<size_t>(stop);
  if (way && place + 1 == scene_.stops.size()) return;
  const TimeEdge edge = way ? TimeEdge{place + 1, false} : TimeEdge{place, true};
  const StopTimes changed =
      EdgeDragged(scene_.stops, edge, TimeOf(scene_.stops, edge) + by, true, scene_.frameSeconds);
  if (changed == scene_.stops) return;
  scene_.stops = changed;
  Gesture gesture = NewGesture();
  gesture.finished = true;
  emit owner_->StopTimesChanged(changed, gesture);
}

bool Timeline::Private::Key(const QKeyEvent& event) {
  if (doing_ != Doing::kNothing) return false;
  const bool ctrl = event.modifiers().testFlag(Qt::ControlModifier);
  const double step = event.modifiers().testFlag(Qt::ShiftModifier) ? 1.0 : scene_.frameSeconds;
  const auto go = [&](double to) {
    emit owner_->TimeAsked(std::clamp(to, 0.0, scene_.length));
    return true;
  };
  if (ctrl && event.key() == Qt::Key_C) return copied_ = selected_, true;
  if (ctrl && event.key() == Qt::Key_V) {
    if (copied_.empty() || copied_.front().lane >= scene_.lanes.size()) return false;
    double first = 1.0;
    for (const KeyPlace& place : copied_) {
      if (place.lane >= scene_.lanes.size()) return false;
      if (place.key >= scene_.lanes[place.lane].times.size()) return false;
      first = std::min(first, scene_.lanes[place.lane].times[place.key]);
    }
    emit owner_->KeysCopied(copied_, seconds_ / std::max(scene_.length, 1e-3) - first);
    return true;
  }
  switch (event.key()) {
    case Qt::Key_Left:
      return go(seconds_ - step);
    case Qt::Key_Right:
      return go(seconds_ + step);
    case Qt::Key_Home:
      return go(0.0);
    case Qt::Key_End:
      return go(scene_.length);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return Lengthen(ctrl, kKeyStep), true;
    case Qt::Key_Minus:
      return Lengthen(ctrl, -kKeyStep), true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      if (selected_.empty()) return false;
      emit owner_->KeysRemoved(selected_);
      return true;
    default:
      return false;
  }
}

Timeline::Timeline(QWidget* parent) : QWidget(parent), p_(std::make_unique<Private>(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAccessibleName(tr("Timeline"));
}

Timeline::~Timeline() = default;

const TimelineScene& Timeline::Scene() const { return p_->scene_; }

void Timeline::SetScene(const TimelineScene& scene) {
  const StopTimes dragged = p_->scene_.stops;
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
  std::erase_if(p_->selected_, [&](const KeyPlace& place) {
    return place.lane >= scene.lanes.size() || place.key >= scene.lanes[place.lane].times.size();
  });
  if (p_->doing_ == Private::Doing::kNothing) p_->Refit();
  updateGeometry();
  update();
}

void Timeline::SetTime(double seconds) {
  if (seconds == p_->seconds_) return;
  p_->seconds_ = seconds;
  update();
}

const std::vector<KeyPlace>& Timeline::SelectedKeys() const { return p_->selected_; }

QSize Timeline::sizeHint() const { return {800, static_cast<int>(HeightOf(p_->scene_)) + 12}; }
QSize Timeline::minimumSizeHint() const { return {240, static_cast<int>(HeightOf(p_->scene_))}; }

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
  const TimelineRows rows = p_->Rows();
  const bool band = p_->doing_ == Private::Doing::kBand;
  DrawTimeline(painter, {p_->scene_, rows, p_->axis_, p_->seconds_, p_->selected_,
                         band ? std::optional(p_->band_) : std::nullopt, palette()});
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
  update();
}

void Timeline::keyPressEvent(QKeyEvent* event) {
  if (!p_->Key(*event)) QWidget::keyPressEvent(event);
}

}  // namespace kelto::editor
