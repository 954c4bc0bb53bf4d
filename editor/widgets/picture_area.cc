#include "editor/widgets/picture_area.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace kelto::editor {
namespace {

/// Of each side: what every screen shows, as EBU R 95 has it.
constexpr double kActionSafe = 0.035;

}  // namespace

PictureArea::PictureArea(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName(tr("Film"));
}

void PictureArea::SetShape(double aspect) {
  aspect_ = aspect;
  update();
}

void PictureArea::SetFrame(const QImage& frame) {
  frame_ = frame;
  notice_.clear();
  update();
}

void PictureArea::SetNotice(const QString& notice) {
  notice_ = notice;
  update();
}

void PictureArea::SetActionSafe(bool shown) {
  actionSafe_ = shown;
  update();
}

void PictureArea::SwitchFullScreen() {
  const bool full = !isWindow();
  setWindowFlag(Qt::Window, full);
  full ? showFullScreen() : show();
  if (full) setFocus();
}

QSize PictureArea::sizeHint() const { return {480, 270}; }
QSize PictureArea::minimumSizeHint() const { return {120, 60}; }

QRectF PictureArea::FrameRect() const {
  const double width = std::min<double>(this->width(), height() * aspect_);
  const QSizeF size(width, width / aspect_);
  return {QPointF((this->width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void PictureArea::DrawFrame(QPainter& painter, const QRectF& room) const {
  if (frame_.isNull()) return;
  const double ratio = devicePixelRatioF();
  const QSizeF size = QSizeF(frame_.size()) / ratio;
  // A frame that was drawn for this room has even sides: its pixels are shown as they are, which is
  // sharper than stretching them by a part of one, and quicker.
  const double most = 2.0 / ratio;
  if (std::abs(size.width() - room.width()) < most &&
      std::abs(size.height() - room.height()) < most) {
    const QPointF corner = room.center() - QPointF(size.width(), size.height()) / 2;
    const QPointF whole(std::round(corner.x() * ratio) / ratio,
                        std::round(corner.y() * ratio) / ratio);
    painter.drawImage(QRectF(whole, size), frame_);
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(room, frame_);
}

void PictureArea::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black);
  const QRectF frame = FrameRect();
  DrawFrame(painter, frame);
  if (actionSafe_) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 170), 1.0));
    const double across = frame.width() * kActionSafe, down = frame.height() * kActionSafe;
    painter.drawRect(frame.adjusted(across, down, -across, -down));
  }
  if (notice_.isEmpty()) return;
  const QRectF room = QRectF(rect()).adjusted(16, 16, -16, -16);
  const QRectF text = painter.boundingRect(room, Qt::AlignCenter | Qt::TextWordWrap, notice_)
                          .adjusted(-8, -6, 8, 6);
  painter.fillRect(text, QColor(0, 0, 0, 190));
  painter.setPen(Qt::white);
  painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, notice_);
}

void PictureArea::resizeEvent(QResizeEvent*) {
  emit BoxChanged((QSizeF(size()) * devicePixelRatioF()).toSize());
}

void PictureArea::mouseDoubleClickEvent(QMouseEvent*) { SwitchFullScreen(); }

void PictureArea::keyPressEvent(QKeyEvent* event) {
  const bool leaves = event->key() == Qt::Key_Escape || event->key() == Qt::Key_F11;
  if (isWindow() && leaves) return SwitchFullScreen();
  QWidget::keyPressEvent(event);
}

void PictureArea::closeEvent(QCloseEvent* event) {
  // The window that filled the screen goes; the area stays.
  event->ignore();
  if (isWindow()) SwitchFullScreen();
}

}  // namespace kelto::editor
