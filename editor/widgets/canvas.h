// The photo with the views of a film and the way between them.
#pragma once

#include <QImage>
#include <QWidget>
#include <memory>
#include <vector>

#include "editor/rules/film_way.h"
#include "editor/rules/view_limits.h"
#include "editor/widgets/gesture.h"
#include "host/options/photo_rect.h"

namespace kelto::editor {

/// What the canvas shows beside the photo.
struct CanvasScene {
  std::vector<host::PhotoRect>
      views;          ///< in order of time; the first is the start, the last the end
  int selected = -1;  ///< of views, -1 for none
  FilmWay way;        ///< empty while it is not known
  ViewLimits limits;
};

/// Knows no document: what the user does goes out as values, and what is to be seen comes back by
/// SetScene. A drag shows its own view at once, whatever comes back meanwhile.
///
/// The wheel over a view zooms it, beside views and with Ctrl the canvas; the middle button, and
/// the left one while Space is held, move the photo. Alt resizes about a view's middle, Shift keeps
/// to an axis, Ctrl suspends snapping.
///
/// Keys: arrows move the selected view by a photo pixel, with Shift by ten; + and - zoom it; Tab
/// and Shift+Tab select the next and previous view; Delete removes it; Escape ends a drag as it
/// began; 0 fits the photo into the canvas, 1 shows its pixels as they are.
class Canvas : public QWidget {
  Q_OBJECT

 public:
  explicit Canvas(QWidget* parent = nullptr);
  ~Canvas() override;

  /// `photo` may be smaller than the scene's photo: it is shown as large.
  void SetPhoto(const QImage& photo);
  void SetScene(const CanvasScene& scene);
  /// The scene's way alone, which takes longer to find than the views.
  void SetWay(const FilmWay& way);
  /// Where the film stands, in seconds: the view there is drawn as a thin frame. Below 0: none.
  void SetTime(double seconds);
  /// A text in the middle instead of the photo, such as why it could not be read; empty for none.
  void SetNotice(const QString& notice);

  // What screen readers ask for.
  int ViewCount() const;
  int SelectedView() const;
  /// What is said of a view.
  QString ViewText(int view) const;
  /// Where a view lies on the canvas.
  QRect ViewPlace(int view) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 public slots:
  void FitPhoto();
  void ShowPixels();
  void ZoomIn();
  void ZoomOut();

 signals:
  /// A view is to be `part`.
  void ViewChanged(int view, const kelto::host::PhotoRect& part, kelto::editor::Gesture gesture);
  /// -1 for none.
  void ViewSelected(int view);
  /// A stop is to be added that shows `part`, where the photo was double-clicked.
  void ViewAdded(const kelto::host::PhotoRect& part);
  void ViewRemoved(int view);
  /// A menu for a view, -1 for the photo, at a place on the screen.
  void MenuAsked(int view, const QPoint& screen);
  /// The photo is shown larger than the picture of it that there is, which has fewer pixels.
  void DetailWanted();
  /// Space was tapped, not held to move the photo.
  void PlayAsked();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  class Private;
  std::unique_ptr<Private> p_;
};

}  // namespace kelto::editor
