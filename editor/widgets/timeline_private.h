// What the timeline is doing, and what events make of it.
#pragma once

#include <QPixmap>
#include <QPointF>
#include <QRectF>
#include <optional>
#include <vector>

#include "editor/widgets/timeline.h"
#include "editor/widgets/timeline_layout.h"

class QKeyEvent;
class QMouseEvent;
class QPainter;

namespace kelto::editor {

class Timeline::Private {
 public:
  explicit Private(Timeline* owner) : owner_(owner) {}

  TimelineRows Rows() const { return RowsOf(scene_, owner_->size(), low_); }
  void Paint(QPainter& painter);
  /// What is seen has changed, but for where the film stands.
  void Redraw() {
    drawn_ = {};
    owner_->update();
  }
  /// The film's speed alone has.
  void RedrawSpeed();
  void SetTime(double seconds);
  void Refit();
  void Press(QMouseEvent& event);
  void PressKey(const KeyPlace& key, Qt::KeyboardModifiers modifiers);
  void Move(QMouseEvent& event);
  void Release();
  void DragKeys(double by);
  void AskTime(double x);
  bool IsThere(const KeyPlace& key) const {
    return key.lane < scene_.lanes.size() && key.key < scene_.lanes[key.lane].times.size();
  }
  /// These keys are the selected ones from now on, in order.
  void Select(std::vector<KeyPlace> keys);
  /// The key ahead of the selected one or behind it becomes the selected one.
  bool SelectNext(bool back);
  bool Key(const QKeyEvent& event);
  /// The selected stop held, or its way taking, this much longer.
  void Lengthen(bool way, double by);
  std::optional<TimeEdge> Edge(QPointF at) const;
  /// Places of a lane's selected keys.
  std::vector<size_t> SelectedOf(size_t lane) const;

  Timeline* owner_;
  TimelineScene scene_;
  /// What is seen below the film's place; null when it has to be drawn. A film that plays moves
  /// nothing but the place, and hundreds of stops take longer than a frame.
  QPixmap drawn_;
  bool speedIsOld_ = false;  ///< in it
  bool low_ = false;
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

}  // namespace kelto::editor
