// The pictures of a slideshow, in order.
#pragma once

#include <QImage>
#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

class QDoubleSpinBox;
class QListWidget;

namespace kelto::editor {

struct StripPicture {
  QString name;
  double seconds = 0.0;        ///< for which it is seen
  std::optional<double> fade;  ///< seconds of the fade to the next; none: the usual
  QImage thumbnail;            ///< null while it is not known
};

struct StripScene {
  std::vector<StripPicture> pictures;
  int selected = 0;
};

/// Shows them as a strip of thumbnails, and the times of the selected one beside it. Dragging, or
/// Alt with the arrow keys, moves a picture; arrow keys select, Delete removes, Insert adds.
class Strip : public QWidget {
  Q_OBJECT

 public:
  static constexpr QSize kThumbnail{160, 100};

  explicit Strip(QWidget* parent = nullptr);

  void SetScene(const StripScene& scene);

 signals:
  void Selected(int picture);
  /// Picture `from` is to become picture `to`.
  void Moved(int from, int to);
  void Removed(int picture);
  /// Pictures are to be added ahead of this place.
  void AddAsked(int at);
  void SecondsChanged(int picture, double seconds);
  void FadeChanged(int picture, double seconds);

 private:
  class List;
  void ShowTimes();

  StripScene scene_;
  List* list_;
  QDoubleSpinBox *seconds_, *fade_;
};

}  // namespace kelto::editor
