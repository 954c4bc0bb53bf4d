// The selected key in numbers.
#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "editor/widgets/timeline.h"
#include "host/plan/render_plan.h"

class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;

namespace kelto::editor {

/// Time and value of a key of a film of keys, to be typed.
class KeyPanel : public QWidget {
  Q_OBJECT

 public:
  explicit KeyPanel(QWidget* parent = nullptr);
  /// `selected` are keys of the plan's lanes, as SettingOfLane has them.
  void Show(const host::RenderPlan& plan, const std::vector<KeyPlace>& selected);

 signals:
  /// In seconds; the keys beside it may be nearer.
  void TimeTyped(const kelto::editor::KeyPlace& key, double seconds);
  void ValueTyped(const kelto::editor::KeyPlace& key, const kelto::host::SettingValue& value);

 private:
  QDoubleSpinBox* AddNumber(QFormLayout* form, const QString& name, double least, double most,
                            int decimals, double step);
  void ShowRow(QWidget* box, bool shown);
  void ShowChoice(const std::string& parameter, const std::string& entry);

  std::optional<KeyPlace> key_;  ///< the one that is shown
  QFormLayout* form_;
  QLabel *title_, *hint_;
  QDoubleSpinBox *time_, *zoom_, *x_, *y_;
  QComboBox* choice_;
};

}  // namespace kelto::editor
