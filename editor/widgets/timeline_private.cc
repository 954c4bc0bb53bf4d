#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "editor/rules/key_drag.h"
#include "editor/widgets/timeline_painter.h"
#include "editor/widgets/timeline_private.h"

namespace kelto::editor {
namespace {

/// Pixels within which an edge is held.
constexpr double kEdgeReach = 6.0;
/// Seconds by which a key makes a stop longer.
constexpr double kKeyStep = 0.1;

}  // namespace

void Timeline::Private::Paint(QPainter& painter) {
  const TimelineRows rows = Rows();
  const bool band = doing_ == Doing::kBand;
  const TimelineDrawing drawing{
      scene_,           rows,      axis_,
      seconds_,         selected_, band ? std::optional(band_) : std::nullopt,
      owner_->palette()};
  const double ratio = owner_->devicePixelRatioF();
  const QSize size = (QSizeF(owner_->size()) * ratio).toSize();
  if (drawn_.size() != size || drawn_.devicePixelRatio() != ratio) {
    drawn_ = QPixmap(size);
    drawn_.setDevicePixelRatio(ratio);
    drawn_.fill(drawing.palette.color(owner_->backgroundRole()));
    QPainter below(&drawn_);
    DrawTimeline(below, drawing);
  } else if (speedIsOld_) {
    QPainter below(&drawn_);
    below.setClipRect(rows.speed.toAlignedRect());
    below.fillRect(rows.speed, drawing.palette.color(owner_->backgroundRole()));
    DrawSpeed(below, drawing);
  }
  speedIsOld_ = false;
  painter.drawPixmap(0, 0, drawn_);
  DrawMoment(painter, drawing);
}

void Timeline::Private::RedrawSpeed() {
  speedIsOld_ = true;
  owner_->update(Rows().speed.toAlignedRect());
}

void Timeline::Private::SetTime(double seconds) {
  if (seconds == seconds_) return;
  const auto place = [&] {
    return QRectF(axis_.ToX(seconds_) - kPlaceWidth / 2, 0.0, kPlaceWidth, owner_->height())
        .toAlignedRect();
  };
  owner_->update(place());
  seconds_ = seconds;
  owner_->update(place());
}

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

void Timeline::Private::Select(std::vector<KeyPlace> keys) {
  if (keys == selected_) return;
  selected_ = std::move(keys);
  Redraw();
  emit owner_->KeysSelected();
}

bool Timeline::Private::SelectNext(bool back) {
  std::vector<KeyPlace> all;
  for (size_t lane = 0; lane < scene_.lanes.size(); ++lane) {
    for (size_t key = 0; key < scene_.lanes[lane].times.size(); ++key) all.push_back({lane, key});
  }
  if (all.empty()) return false;
  auto next = all.begin();
  if (!selected_.empty()) {
    next = std::lower_bound(all.begin(), all.end(), back ? selected_.front() : selected_.back());
    if (back && next != all.begin()) --next;
    if (!back && next + 1 != all.end()) ++next;
  }
  Select({*next});
  return true;
}

std::vector<size_t> Timeline::Private::SelectedOf(size_t lane) const {
  std::vector<size_t> keys;
  for (const KeyPlace& place : selected_) {
    if (place.lane == lane) keys.push_back(place.key);
  }
  return keys;
}

void Timeline::Private::PressKey(const KeyPlace& key, Qt::KeyboardModifiers modifiers) {
  std::vector<KeyPlace> keys = selected_;
  const auto found = std::lower_bound(keys.begin(), keys.end(), key);
  const bool isSelected = found != keys.end() && *found == key;
  const bool more = modifiers & (Qt::ControlModifier | Qt::ShiftModifier);
  if (isSelected && more) {
    keys.erase(found);
  } else if (!isSelected && more) {
    keys.insert(found, key);
  } else if (!isSelected) {
    keys = {key};
  }
  Select(std::move(keys));
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
    Select({});
  } else {
    doing_ = Doing::kScrub;
    AskTime(at.x());
  }
  Redraw();
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
      Select(KeysIn(scene_, Rows(), axis_, band_));
      return owner_->update();
    default:
      owner_->setCursor(Edge(at) ? Qt::SplitHCursor : Qt::ArrowCursor);
      return;
  }
  Redraw();
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
  Redraw();
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
  if (ctrl && (event.key() == Qt::Key_Left || event.key() == Qt::Key_Right)) {
    return SelectNext(event.key() == Qt::Key_Left);
  }
  if (ctrl && event.key() == Qt::Key_C) return copied_ = selected_, true;
  if (ctrl && event.key() == Qt::Key_V) {
    if (copied_.empty() || copied_.front().lane >= scene_.lanes.size()) return false;
    double first = 1.0;
    for (const KeyPlace& place : copied_) {
      if (place.lane >= scene_.lanes.size()) return false;
      if (place.key >= scene_.lanes[place.lane].times.size()) return false;
      first = std::min(first, scene_.lanes[place.lane].times[place.key]);
    }
    const double here = std::max(0.0, seconds_);  // a card may come before the film
    emit owner_->KeysCopied(copied_, here / std::max(scene_.length, 1e-3) - first);
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
      // A copy: what is selected changes as the first of them goes.
      emit owner_->KeysRemoved(std::vector(selected_));
      return true;
    default:
      return false;
  }
}

}  // namespace kelto::editor
