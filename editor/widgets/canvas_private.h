// What the canvas shows and what is being done to it.
#pragma once

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QTimer>
#include <optional>

#include "editor/rules/view_drag.h"
#include "editor/widgets/canvas.h"
#include "editor/widgets/photo_levels.h"

namespace kelto::editor {

/// A turn of the wheel, 120 of its units.
inline constexpr double kWheelStep = 1.12;

inline CanvasPoint PointOf(const QPointF& at) { return {at.x(), at.y()}; }

/// Canvas pixels within which corners are held.
inline constexpr double kCornerReach = 9.0;

class Canvas::Private {
 public:
  explicit Private(Canvas* owner);

  // What is shown.
  void SetScene(const CanvasScene& scene);
  /// What screen readers say of the selected view.
  void Describe();
  void Paint(QPainter& painter);
  void Fit();
  void SetTransform(const CanvasTransform& transform);
  void ZoomAbout(CanvasPoint point, double factor) {
    SetTransform(ZoomedAbout(transform_, point, factor, scene_.limits));
    fitted_ = false;
  }
  void MoveBy(QPointF by);
  CanvasPoint Middle() const { return {owner_->width() / 2.0, owner_->height() / 2.0}; }
  CanvasSize Size() const {
    return {static_cast<double>(owner_->width()), static_cast<double>(owner_->height())};
  }

  // What the user does.
  void Press(QMouseEvent& event);
  void Move(QMouseEvent& event);
  void Release();
  void Cancel();
  bool SelectNext(bool forward);
  void Select(int view);
  bool HasSelection() const {
    return scene_.selected >= 0 && scene_.selected < static_cast<int>(scene_.views.size());
  }
  /// A change of the selected view by keys or wheel, that more may follow.
  void Change(const host::PhotoRect& view);
  void EndGesture();
  bool Key(const QKeyEvent& event);
  void Hover(QPointF at);
  Hit At(QPointF at) const {
    return HitAt(scene_.views, scene_.selected, transform_, PointOf(at), kCornerReach);
  }

  Canvas* owner_;
  CanvasScene scene_;
  PhotoLevels photo_;
  QString notice_;
  double seconds_ = -1.0;
  CanvasTransform transform_;
  bool fitted_ = true;  ///< follows the canvas's size
  QPixmap background_;  ///< the photo as it lies now; null when it has to be drawn
  /// The same with the views that are not selected, for as long as neither changes: hundreds of
  /// them take longer than all else.
  struct Others {
    QPixmap picture;
    qint64 background = 0;  ///< cache key of the photo below
    std::vector<host::PhotoRect> views;
    int selected = -1;
    ViewLimits limits{};
  } others_;
  /// The same with the way, which an answer of the preview changes and a key does not.
  struct WayBelow {
    QPixmap picture;
    qint64 others = 0;  ///< cache key of what is below
    FilmWay way;
  } way_;
  /// Draw them anew where something has changed.
  void UpdateOthers(const QRectF& canvas);
  void UpdateWay(const QRectF& canvas);

  enum class Doing { kNothing, kDrag, kPan } doing_ = Doing::kNothing;
  QPointF pressedAt_, lastAt_;
  bool dragged_ = false;
  int view_ = -1;  ///< being changed
  ViewDrag drag_;
  DraggedView now_;
  std::optional<Gesture> gesture_;
  QTimer wheelEnds_;
  bool space_ = false, spaceUsed_ = false;
  QElapsedTimer spaceSince_;
};

}  // namespace kelto::editor
