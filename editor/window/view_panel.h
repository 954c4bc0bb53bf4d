// The selected view in numbers.
#pragma once

#include <QWidget>

#include "editor/rules/stop_times.h"
#include "editor/widgets/canvas.h"
#include "editor/widgets/gesture.h"

class QDoubleSpinBox;
class QLabel;

namespace kelto::editor {

/// Place and size in photo pixels, and times in seconds, to be typed.
class ViewPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ViewPanel(QWidget* parent = nullptr);
  void Show(const CanvasScene& scene, const StopTimes& times);

 signals:
  void PartChanged(int view, const kelto::host::PhotoRect& part, kelto::editor::Gesture gesture);
  void TimesChanged(double hold, double go);

 private:
  void Typed(const QDoubleSpinBox* box);

  CanvasScene scene_;
  QLabel *title_, *enlargement_;
  QDoubleSpinBox *left_, *top_, *width_, *height_, *hold_, *go_;
};

}  // namespace kelto::editor
