#include "editor/widgets/canvas.h"

#include <QContextMenuEvent>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cmath>

#include "editor/widgets/canvas_accessible.h"
#include "editor/widgets/canvas_private.h"

namespace kelto::editor {
namespace {

/// Milliseconds that Space is held at the most to be a tap.
constexpr int kTap = 250;

}  // namespace

Canvas::Canvas(QWidget* parent) : QWidget(parent), p_(std::make_unique<Private>(this)) {
  // First: naming it has its description made.
  DescribeCanvasViews();
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName(tr("Photo with views"));
}

Canvas::~Canvas() = default;

void Canvas::SetPhoto(const QImage& photo) {
  p_->photo_ = PhotoLevels(photo);
  p_->notice_.clear();
  p_->background_ = {};
  update();
}

void Canvas::SetScene(const CanvasScene& scene) { p_->SetScene(scene); }

void Canvas::SetWay(const FilmWay& way) {
  if (way == p_->scene_.way) return;
  p_->scene_.way = way;
  update();
}

void Canvas::SetTime(double seconds) {
  if (seconds == p_->seconds_) return;
  p_->seconds_ = seconds;
  update();
}

void Canvas::SetNotice(const QString& notice) {
  if (notice == p_->notice_) return;
  p_->notice_ = notice;
  p_->background_ = {};
  update();
}

int Canvas::ViewCount() const { return static_cast<int>(p_->scene_.views.size()); }
int Canvas::SelectedView() const { return p_->scene_.selected; }

QString Canvas::ViewText(int view) const {
  return tr("View %1 of %2, %3 pixels wide")
      .arg(view + 1)
      .arg(ViewCount())
      .arg(std::lround(p_->scene_.views.at(static_cast<size_t>(view)).width));
}

QRect Canvas::ViewPlace(int view) const {
  if (view < 0 || view >= ViewCount()) return {};
  const host::PhotoRect& part = p_->scene_.views[static_cast<size_t>(view)];
  const CanvasPoint corner = p_->transform_.ToCanvas({part.x, part.y});
  const double scale = p_->transform_.scale;
  return QRectF(corner.x, corner.y, part.width * scale, part.height * scale).toAlignedRect();
}

QSize Canvas::sizeHint() const { return {800, 520}; }
QSize Canvas::minimumSizeHint() const { return {200, 140}; }

void Canvas::FitPhoto() { p_->Fit(); }
void Canvas::ShowPixels() {
  p_->ZoomAbout(p_->Middle(), 1.0 / (p_->transform_.scale * devicePixelRatioF()));
}
void Canvas::ZoomIn() { p_->ZoomAbout(p_->Middle(), 1.5); }
void Canvas::ZoomOut() { p_->ZoomAbout(p_->Middle(), 1.0 / 1.5); }

bool Canvas::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<QKeyEvent&>(*event);
    const bool on = key.key() == Qt::Key_Tab, back = key.key() == Qt::Key_Backtab;
    const bool busy = p_->doing_ == Private::Doing::kDrag;
    if ((on || back) && (busy || p_->SelectNext(on))) return true;
  }
  if (event->type() == QEvent::ShortcutOverride) {
    // Keys that mean something here are no shortcuts of the window meanwhile.
    auto& key = static_cast<QKeyEvent&>(*event);
    constexpr std::array kOwn = {Qt::Key_Left,   Qt::Key_Right,     Qt::Key_Up,   Qt::Key_Down,
                                 Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Plus, Qt::Key_Minus,
                                 Qt::Key_0,      Qt::Key_1,         Qt::Key_Space};
    const bool plain = !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (plain && std::find(kOwn.begin(), kOwn.end(), key.key()) != kOwn.end()) {
      event->accept();
      return true;
    }
  }
  return QWidget::event(event);
}

void Canvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  p_->Paint(painter);
}

void Canvas::resizeEvent(QResizeEvent*) {
  p_->background_ = {};
  if (p_->fitted_) {
    p_->Fit();
  } else {
    p_->MoveBy({});
  }
}

void Canvas::mousePressEvent(QMouseEvent* event) { p_->Press(*event); }
void Canvas::mouseMoveEvent(QMouseEvent* event) { p_->Move(*event); }
void Canvas::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::RightButton) p_->Release();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || p_->space_) return;
  p_->Cancel();
  const PhotoPoint at = p_->transform_.ToPhoto(PointOf(event->position()));
  const ViewLimits& limits = p_->scene_.limits;
  if (at.x < 0.0 || at.y < 0.0 || at.x > limits.photoWidth || at.y > limits.photoHeight) return;
  const Hit hit = p_->At(event->position());
  const double around = hit.view < 0 ? limits.WidestAllowed() : p_->scene_.views[hit.view].width;
  emit ViewAdded(ViewAbout(at, around / 2, limits));
}

void Canvas::wheelEvent(QWheelEvent* event) {
  const double turns = event->angleDelta().y() / 120.0;
  event->accept();
  if (turns == 0.0 || p_->doing_ != Private::Doing::kNothing) return;
  const QPointF at = event->position();
  const Hit hit = p_->At(at);
  if (hit.view < 0 || event->modifiers().testFlag(Qt::ControlModifier)) {
    return p_->ZoomAbout(PointOf(at), std::pow(kWheelStep, turns));
  }
  p_->Select(hit.view);
  p_->Change(ResizedAbout(p_->scene_.views[hit.view], p_->transform_.ToPhoto(PointOf(at)),
                          std::pow(kWheelStep, -turns), p_->scene_.limits));
  p_->wheelEnds_.start();
}

void Canvas::keyPressEvent(QKeyEvent* event) {
  const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
  if (!plain || !p_->Key(*event)) QWidget::keyPressEvent(event);
}

void Canvas::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat()) return;
  if (event->key() != Qt::Key_Space) {
    if (p_->doing_ == Private::Doing::kNothing && !p_->wheelEnds_.isActive()) p_->EndGesture();
    return QWidget::keyReleaseEvent(event);
  }
  if (!p_->space_) return;
  p_->space_ = false;
  setCursor(Qt::ArrowCursor);
  if (!p_->spaceUsed_ && p_->spaceSince_.elapsed() < kTap) emit PlayAsked();
}

void Canvas::contextMenuEvent(QContextMenuEvent* event) {
  p_->Release();
  int view = p_->scene_.selected;
  if (event->reason() == QContextMenuEvent::Mouse) view = p_->At(event->pos()).view;
  p_->Select(view);
  emit MenuAsked(view, event->globalPos());
}

void Canvas::focusOutEvent(QFocusEvent* event) {
  // A drag goes on: the button is still held.
  if (p_->doing_ == Private::Doing::kNothing) p_->EndGesture();
  p_->space_ = false;
  QWidget::focusOutEvent(event);
}

void Canvas::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) p_->background_ = {};
  QWidget::changeEvent(event);
}

}  // namespace kelto::editor
