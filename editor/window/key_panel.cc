#include "editor/window/key_panel.h"

#include <QtWidgets>
#include <array>

#include "catalogue/parameters.h"
#include "editor/window/scenes.h"
#include "host/options/choices.h"
#include "host/options/view.h"

namespace kelto::editor {
namespace {

struct VelocityText {
  const char* word;
  const char* text;
};
constexpr VelocityText kVelocities[] = {
    {"linear", QT_TRANSLATE_NOOP("KeyPanel", "Evenly")},
    {"ease", QT_TRANSLATE_NOOP("KeyPanel", "Gently")},
    {"constant", QT_TRANSLATE_NOOP("KeyPanel", "At one speed through all")},
    {"hold", QT_TRANSLATE_NOOP("KeyPanel", "Jump")},
};

QString TextOf(const catalogue::Entry& entry) {
  for (const VelocityText& velocity : kVelocities) {
    if (std::string_view(entry.word) == velocity.word) {
      return QCoreApplication::translate("KeyPanel", velocity.text);
    }
  }
  return entry.text;
}

/// A number that is being typed stays.
void ShowNumber(QDoubleSpinBox* box, double number) {
  const QSignalBlocker quiet(box);
  if (box->value() != number) box->setValue(number);
}

}  // namespace

KeyPanel::KeyPanel(QWidget* parent) : QWidget(parent), form_(new QFormLayout) {
  constexpr double kDay = 86400.0;
  title_ = new QLabel;
  QFont bold = title_->font();
  bold.setBold(true);
  title_->setFont(bold);
  hint_ = new QLabel;
  hint_->setWordWrap(true);
  time_ = AddNumber(form_, tr("Time"), 0.0, kDay, 3, 0.1);
  time_->setSuffix(tr(" s"));
  zoom_ = AddNumber(form_, tr("Zoom"), kMinZoom, kMaxZoom, 4, 0.1);
  x_ = AddNumber(form_, tr("Across"), -host::kMaxCentre, host::kMaxCentre, 4, 0.01);
  x_->setToolTip(tr("From the photo’s middle, right, in widths of what zoom 1 shows"));
  y_ = AddNumber(form_, tr("Down"), -host::kMaxCentre, host::kMaxCentre, 4, 0.01);
  y_->setToolTip(tr("From the photo’s middle, down, in heights of what zoom 1 shows"));
  choice_ = new QComboBox;
  choice_->setAccessibleName(tr("How"));
  form_->addRow(tr("How"), choice_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(title_);
  column->addWidget(hint_);
  column->addLayout(form_);

  connect(time_, &QDoubleSpinBox::valueChanged, this, [this](double seconds) {
    if (key_) emit TimeTyped(*key_, seconds);
  });
  connect(zoom_, &QDoubleSpinBox::valueChanged, this, [this](double zoom) {
    if (key_) emit ValueTyped(*key_, zoom);
  });
  for (QDoubleSpinBox* box : {x_, y_}) {
    connect(box, &QDoubleSpinBox::valueChanged, this, [this] {
      if (key_) emit ValueTyped(*key_, std::array{x_->value(), y_->value()});
    });
  }
  connect(choice_, &QComboBox::activated, this, [this] {
    if (key_) emit ValueTyped(*key_, choice_->currentData().toString().toStdString());
  });
}

QDoubleSpinBox* KeyPanel::AddNumber(QFormLayout* form, const QString& name, double least,
                                    double most, int decimals, double step) {
  auto* box = new QDoubleSpinBox;
  box->setRange(least, most);
  box->setDecimals(decimals);
  box->setSingleStep(step);
  // Each digit typed would be a change of its own.
  box->setKeyboardTracking(false);
  box->setAccessibleName(name);
  form->addRow(name, box);
  return box;
}

void KeyPanel::ShowRow(QWidget* box, bool shown) {
  box->setVisible(shown);
  form_->labelForField(box)->setVisible(shown);
}

void KeyPanel::ShowChoice(const std::string& parameter, const std::string& entry) {
  const QSignalBlocker quiet(choice_);
  choice_->clear();
  for (const catalogue::Entry& one : host::ListOf(parameter).choices) {
    choice_->addItem(TextOf(one), QString(one.text));
  }
  choice_->setCurrentIndex(choice_->findData(QString::fromStdString(entry)));
}

void KeyPanel::Show(const host::RenderPlan& plan, const std::vector<KeyPlace>& selected) {
  key_.reset();
  const host::Setting* setting =
      selected.size() == 1 ? SettingOfLane(plan, selected[0].lane) : nullptr;
  const host::SettingKey* key = nullptr;
  if (setting != nullptr && selected[0].key < setting->keys.size()) {
    key = &setting->keys[selected[0].key];
  }
  const auto is = [&](auto type) {
    return key != nullptr && std::get_if<decltype(type)>(&key->value) != nullptr;
  };
  const bool point = is(std::array<double, 2>());
  ShowRow(time_, key != nullptr);
  ShowRow(zoom_, is(0.0));
  ShowRow(x_, point);
  ShowRow(y_, point);
  ShowRow(choice_, is(std::string()));
  hint_->setVisible(key == nullptr);
  if (key == nullptr) {
    title_->setText(tr("A film of keys"));
    hint_->setText(selected.size() > 1
                       ? tr("%1 keys are selected").arg(selected.size())
                       : tr("Select a key on the timeline to type its time and value"));
    return;
  }
  title_->setText(tr("%1, key %2 of %3")
                      .arg(LaneName(setting->parameter))
                      .arg(selected[0].key + 1)
                      .arg(setting->keys.size()));
  ShowNumber(time_, key->time * plan.frames / plan.format.rate.PerSecond());
  if (const auto* zoom = std::get_if<double>(&key->value)) ShowNumber(zoom_, *zoom);
  if (const auto* centre = std::get_if<std::array<double, 2>>(&key->value)) {
    ShowNumber(x_, (*centre)[0]);
    ShowNumber(y_, (*centre)[1]);
  }
  if (const auto* entry = std::get_if<std::string>(&key->value)) {
    ShowChoice(setting->parameter, *entry);
  }
  key_ = selected[0];
}

}  // namespace kelto::editor
