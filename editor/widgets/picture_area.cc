#include "editor/widgets/picture_area.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

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
QSize PictureArea::minimumSizeHint() const { return {160, 90}; }

QRectF PictureArea::FrameRect() const {
  const double width = std::min<double>(this->width(), height() * aspect_);
  const QSizeF size(width, width / aspect_);
  return {QPointF((this->width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void PictureArea::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black);
  const QRectF frame = FrameRect();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  if (!frame_.isNull()) painter.drawImage(frame, frame_);
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
