#include "editor/widgets/canvas_private.h"

#include <QAccessible>
#include <cmath>

#include "editor/widgets/canvas_painter.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;

constexpr double kMargin = 24.0;
/// Canvas pixels within which views snap.
constexpr double kSnapReach = 7.0;
/// Canvas pixels that a press moves before it is a drag.
constexpr double kDragBegins = 3.0;
/// How long wheel turns belong to one gesture.
constexpr int kWheelPause = 400;

DragKeys KeysOf(Qt::KeyboardModifiers modifiers) {
  return {modifiers.testFlag(Qt::AltModifier), modifiers.testFlag(Qt::ShiftModifier),
          modifiers.testFlag(Qt::ControlModifier)};
}

Qt::CursorShape CursorOf(Grip grip) {
  switch (grip) {
    case Grip::kInside:
      return Qt::SizeAllCursor;
    case Grip::kTopLeft:
    case Grip::kBottomRight:
      return Qt::SizeFDiagCursor;
    case Grip::kTopRight:
    case Grip::kBottomLeft:
      return Qt::SizeBDiagCursor;
    default:
      return Qt::ArrowCursor;
  }
}

}  // namespace

Canvas::Private::Private(Canvas* owner) : owner_(owner) {
  wheelEnds_.setSingleShot(true);
  wheelEnds_.setInterval(kWheelPause);
  QObject::connect(&wheelEnds_, &QTimer::timeout, owner, [this] { EndGesture(); });
}

void Canvas::Private::SetScene(const CanvasScene& scene) {
  const bool otherPhoto = scene.limits.photoWidth != scene_.limits.photoWidth ||
                          scene.limits.photoHeight != scene_.limits.photoHeight;
  const int before = scene_.selected;
  scene_ = scene;
  if (doing_ == Doing::kDrag) {
    if (view_ < static_cast<int>(scene_.views.size())) {
      if (dragged_) scene_.views[view_] = now_.view;
    } else {
      doing_ = Doing::kNothing;
      gesture_.reset();
    }
  }
  if (otherPhoto) Fit();
  if (before != scene_.selected) Describe();
  owner_->update();
}

void Canvas::Private::Describe() {
  if (!HasSelection()) return owner_->setAccessibleDescription({});
  owner_->setAccessibleDescription(owner_->ViewText(scene_.selected));
  QAccessibleEvent changed(owner_, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&changed);
}

void Canvas::Private::Fit() {
  fitted_ = true;
  SetTransform(FittedTransform(scene_.limits, Size(), kMargin));
}

void Canvas::Private::SetTransform(const CanvasTransform& transform) {
  if (transform == transform_ && !background_.isNull()) return;
  transform_ = transform;
  background_ = {};
  owner_->update();
}

void Canvas::Private::MoveBy(QPointF by) {
  fitted_ = false;
  SetTransform(MovedBy(transform_, by.x(), by.y(), scene_.limits, Size()));
}

void Canvas::Private::Paint(QPainter& painter) {
  const QRectF canvas(owner_->rect());
  if (background_.isNull()) {
    const double ratio = owner_->devicePixelRatioF();
    background_ = QPixmap((canvas.size() * ratio).toSize());
    background_.setDevicePixelRatio(ratio);
    background_.fill(owner_->palette().color(QPalette::Dark).darker(140));
    QPainter below(&background_);
    const PhotoRect whole{0.0, 0.0, scene_.limits.photoWidth, scene_.limits.photoHeight};
    const QRectF target = OnCanvas(whole, transform_);
    if (notice_.isEmpty()) photo_.Draw(below, target, canvas);
    const bool finer = photo_.Width() > 0 && photo_.Width() < whole.width;
    if (finer && target.width() * ratio > photo_.Width()) emit owner_->DetailWanted();
  }
  if (!notice_.isEmpty()) {
    painter.drawPixmap(0, 0, background_);
    painter.setPen(Qt::white);
    painter.drawText(canvas.adjusted(kMargin, kMargin, -kMargin, -kMargin),
                     Qt::AlignCenter | Qt::TextWordWrap, notice_);
    return;
  }
  UpdateOthers(canvas);
  UpdateWay(canvas);
  painter.drawPixmap(0, 0, way_.picture);
  const bool dragging = doing_ == Doing::kDrag && dragged_;
  DrawOverlay(painter,
              {scene_, transform_, canvas, seconds_, dragging ? now_.snappedX : std::nullopt,
               dragging ? now_.snappedY : std::nullopt});
  if (!owner_->hasFocus()) return;
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(owner_->palette().color(QPalette::Highlight));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(canvas.adjusted(0, 0, -1, -1));
}

void Canvas::Private::UpdateOthers(const QRectF& canvas) {
  std::vector<PhotoRect> views = scene_.views;
  if (HasSelection()) views[static_cast<size_t>(scene_.selected)] = {};
  if (others_.background == background_.cacheKey() && others_.selected == scene_.selected &&
      others_.limits == scene_.limits && others_.views == views) {
    return;
  }
  others_ = {background_, background_.cacheKey(), std::move(views), scene_.selected, scene_.limits};
  QPainter painter(&others_.picture);
  DrawOtherViews(painter, {scene_, transform_, canvas, -1.0, std::nullopt, std::nullopt});
}

void Canvas::Private::UpdateWay(const QRectF& canvas) {
  if (way_.others == others_.picture.cacheKey() && way_.way == scene_.way) return;
  way_ = {others_.picture, others_.picture.cacheKey(), scene_.way};
  if (scene_.way.size() < 2) return;
  QPainter painter(&way_.picture);
  DrawWay(painter, {scene_, transform_, canvas, -1.0, std::nullopt, std::nullopt});
}

void Canvas::Private::Select(int view) {
  if (view == scene_.selected) return;
  EndGesture();
  scene_.selected = view;
  Describe();
  owner_->update();
  emit owner_->ViewSelected(view);
}

bool Canvas::Private::SelectNext(bool forward) {
  const int next = scene_.selected + (forward ? 1 : -1);
  const int count = static_cast<int>(scene_.views.size());
  if (scene_.selected < 0 && !forward && count > 0) {
    Select(count - 1);
    return true;
  }
  if (next < 0 || next >= count) return false;  // focus goes on
  Select(next);
  return true;
}

void Canvas::Private::Press(QMouseEvent& event) {
  pressedAt_ = lastAt_ = event.position();
  if (event.button() == Qt::MiddleButton || (event.button() == Qt::LeftButton && space_)) {
    if (doing_ == Doing::kDrag) return;
    doing_ = Doing::kPan;
    spaceUsed_ = true;
    owner_->setCursor(Qt::ClosedHandCursor);
    return;
  }
  if (event.button() != Qt::LeftButton || doing_ != Doing::kNothing) return;
  EndGesture();
  const Hit hit = At(event.position());
  Select(hit.view);
  if (hit.view < 0) return;
  doing_ = Doing::kDrag;
  dragged_ = false;
  view_ = hit.view;
  drag_ = {hit.grip, scene_.views[hit.view], transform_.ToPhoto(PointOf(event.position()))};
}

void Canvas::Private::Move(QMouseEvent& event) {
  const QPointF by = event.position() - lastAt_;
  lastAt_ = event.position();
  if (doing_ == Doing::kPan) return MoveBy(by);
  if (doing_ != Doing::kDrag) return Hover(event.position());
  const QPointF far = event.position() - pressedAt_;
  if (!dragged_ && std::hypot(far.x(), far.y()) < kDragBegins) return;
  if (!dragged_) gesture_ = NewGesture();
  dragged_ = true;
  now_ = Dragged(drag_, transform_.ToPhoto(PointOf(event.position())), KeysOf(event.modifiers()),
                 scene_.limits, kSnapReach / transform_.scale);
  scene_.views[view_] = now_.view;
  owner_->update();
  emit owner_->ViewChanged(view_, now_.view, *gesture_);
}

void Canvas::Private::Release() {
  const bool ended = doing_ == Doing::kDrag && dragged_;
  if (doing_ == Doing::kPan) owner_->setCursor(space_ ? Qt::OpenHandCursor : Qt::ArrowCursor);
  doing_ = Doing::kNothing;
  if (ended) EndGesture();
  owner_->update();
}

void Canvas::Private::Cancel() {
  if (doing_ != Doing::kDrag) return;
  now_.view = drag_.from;
  if (dragged_) scene_.views[view_] = drag_.from;
  Release();
}

void Canvas::Private::Change(const PhotoRect& view) {
  if (view == scene_.views[scene_.selected]) return;
  if (!gesture_) gesture_ = NewGesture();
  view_ = scene_.selected;
  scene_.views[view_] = view;
  owner_->update();
  emit owner_->ViewChanged(view_, view, *gesture_);
}

void Canvas::Private::EndGesture() {
  wheelEnds_.stop();
  if (!gesture_) return;
  Gesture gesture = *gesture_;
  gesture_.reset();
  gesture.finished = true;
  if (view_ < 0 || view_ >= static_cast<int>(scene_.views.size())) return;
  emit owner_->ViewChanged(view_, scene_.views[view_], gesture);
}

bool Canvas::Private::Key(const QKeyEvent& event) {
  const double step = event.modifiers().testFlag(Qt::ShiftModifier) ? 10.0 : 1.0;
  const auto nudge = [&](double right, double down) {
    if (!HasSelection()) return;
    Change(Nudged(scene_.views[scene_.selected], right * step, down * step, scene_.limits));
  };
  const auto resize = [&](double factor) {
    if (!HasSelection()) return owner_->ZoomIn();
    const PhotoRect& view = scene_.views[scene_.selected];
    Change(ResizedAbout(view, {view.CentreX(), view.CentreY()}, factor, scene_.limits));
  };
  if (doing_ == Doing::kDrag && event.key() != Qt::Key_Escape) return true;
  switch (event.key()) {
    case Qt::Key_Left:
      return nudge(-1.0, 0.0), true;
    case Qt::Key_Right:
      return nudge(1.0, 0.0), true;
    case Qt::Key_Up:
      return nudge(0.0, -1.0), true;
    case Qt::Key_Down:
      return nudge(0.0, 1.0), true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return resize(1.0 / kWheelStep), true;
    case Qt::Key_Minus:
      return resize(kWheelStep), true;
    case Qt::Key_0:
      return owner_->FitPhoto(), true;
    case Qt::Key_1:
      return owner_->ShowPixels(), true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      EndGesture();
      if (HasSelection()) emit owner_->ViewRemoved(scene_.selected);
      return true;
    case Qt::Key_Escape:
      if (doing_ == Doing::kDrag) return Cancel(), true;
      return false;
    case Qt::Key_Space:
      if (event.isAutoRepeat()) return true;
      space_ = true;
      spaceUsed_ = false;
      spaceSince_.start();
      if (doing_ == Doing::kNothing) owner_->setCursor(Qt::OpenHandCursor);
      return true;
    default:
      return false;
  }
}

void Canvas::Private::Hover(QPointF at) {
  if (!space_) owner_->setCursor(CursorOf(At(at).grip));
}

}  // namespace kelto::editor
