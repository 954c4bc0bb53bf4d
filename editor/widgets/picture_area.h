// A frame in its shape, in the middle of whatever room there is.
#pragma once

#include <QImage>
#include <QWidget>

class QPainter;

namespace kelto::editor {

class PictureArea : public QWidget {
  Q_OBJECT

 public:
  explicit PictureArea(QWidget* parent = nullptr);

  /// Width over height of the frame as shown.
  void SetShape(double aspect);
  void SetFrame(const QImage& frame);
  void SetNotice(const QString& notice);
  void SetActionSafe(bool shown);
  /// Fills the screen, or goes back to where it was.
  void SwitchFullScreen();
  bool FillsScreen() const { return isWindow(); }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void BoxChanged(QSize box);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QRectF FrameRect() const;
  void DrawFrame(QPainter& painter, const QRectF& room) const;

  QImage frame_;
  QString notice_;
  double aspect_ = 16.0 / 9.0;
  bool actionSafe_ = false;
};

}  // namespace kelto::editor
