// The film along time: its stops or keys, its sound, and how fast it is seen to move.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <vector>

#include "editor/rules/film_way.h"
#include "editor/rules/stop_times.h"
#include "editor/widgets/gesture.h"

namespace kelto::editor {

/// A parameter's keys, opened below the stops.
struct KeyLane {
  QString name;                 ///< as the user reads it
  std::vector<double> times;    ///< 0..1 over the film, in order
  std::vector<QString> values;  ///< one for each key
  bool operator==(const KeyLane&) const = default;
};

/// A key by its place: which of the scene's lanes, and which of its times.
struct KeyPlace {
  size_t lane = 0, key = 0;
  auto operator<=>(const KeyPlace&) const = default;
};

/// How time is spent on the way from a stop to the next.
struct WayEasing {
  QString word;               ///< as the user reads it
  std::vector<double> curve;  ///< the share covered, 0..1, at even times from 0 to 1
  bool operator==(const WayEasing&) const = default;
};

struct TimelineScene {
  StopTimes stops;                ///< empty for a film of keys
  std::vector<WayEasing> easing;  ///< of each stop's way; empty where it is not known
  int selected = -1;              ///< of stops
  double length = 0.0;            ///< seconds of the film
  double frameSeconds = 0.04;
  std::vector<KeyLane> lanes;
  std::vector<float> sound;  ///< peaks 0..1 at even times over the film; empty without sound
  FilmWay way;
  bool operator==(const TimelineScene&) const = default;
};

/// Knows no document, as the canvas does not. Dragged edges move between what lies at both sides;
/// with Ctrl all that follows moves along. Ctrl and the wheel zoom time. Keys: arrows go a frame on
/// or back, with Shift a second; + and - hold the selected stop longer or shorter, with Ctrl its
/// way; Ctrl with the arrows selects the key before or behind; Delete, Ctrl+C and Ctrl+V work on
/// the selected keys.
class Timeline : public QWidget {
  Q_OBJECT

 public:
  explicit Timeline(QWidget* parent = nullptr);
  ~Timeline() override;

  void SetScene(const TimelineScene& scene);
  const TimelineScene& Scene() const;
  /// The scene's way alone, which takes longer to find than all else.
  void SetWay(const FilmWay& way);
  /// Whether rows are as low as they can be read, for small screens.
  void SetLow(bool low);
  /// Where the film stands, in seconds. Below 0: before it, which is not shown.
  void SetTime(double seconds);
  const std::vector<KeyPlace>& SelectedKeys() const;
  /// Makes this key, where it is there, the selected one.
  void SelectKey(const KeyPlace& key);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void TimeAsked(double seconds);
  void StopSelected(int stop);
  void StopTimesChanged(const kelto::editor::StopTimes& times, kelto::editor::Gesture gesture);
  /// The easing of the way behind a stop is to be chosen, from a menu at a place on the screen.
  void EasingAsked(int stop, const QPoint& screen);
  /// Other keys are selected, or none.
  void KeysSelected();
  /// All times of a lane's keys, in their places.
  void KeysMoved(size_t lane, const std::vector<double>& times, kelto::editor::Gesture gesture);
  void KeyAdded(size_t lane, double time);
  void KeysRemoved(const std::vector<kelto::editor::KeyPlace>& keys);
  /// The same keys again, this much later, 0..1 over the film.
  void KeysCopied(const std::vector<kelto::editor::KeyPlace>& keys, double later);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class Private;
  std::unique_ptr<Private> p_;
};

}  // namespace kelto::editor
