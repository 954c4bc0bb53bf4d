#include "editor/window/view_panel.h"

#include <QtWidgets>

namespace kelto::editor {
namespace {

QDoubleSpinBox* NumberBox(const QString& name, const QString& suffix, double least, double most,
                          int decimals) {
  auto* box = new QDoubleSpinBox;
  box->setRange(least, most);
  box->setDecimals(decimals);
  box->setSuffix(suffix);
  box->setKeyboardTracking(false);
  box->setAccessibleName(name);
  return box;
}

void ShowNumber(QDoubleSpinBox* box, double number) {
  if (box->hasFocus() && box->value() == number) return;
  const QSignalBlocker quiet(box);
  box->setValue(number);
}

}  // namespace

ViewPanel::ViewPanel(QWidget* parent) : QWidget(parent) {
  constexpr double kFar = 1e6, kDay = 86400.0;
  const QString pixels = tr(" px"), seconds = tr(" s");
  left_ = NumberBox(tr("Left"), pixels, -kFar, kFar, 1);
  top_ = NumberBox(tr("Top"), pixels, -kFar, kFar, 1);
  width_ = NumberBox(tr("Width"), pixels, 1, kFar, 1);
  height_ = NumberBox(tr("Height"), pixels, 1, kFar, 1);
  hold_ = NumberBox(tr("Look"), seconds, 0, kDay, 2);
  hold_->setSingleStep(0.1);
  hold_->setToolTip(tr("How long the view is looked at"));
  go_ = NumberBox(tr("Way"), seconds, 0, kDay, 2);
  go_->setSingleStep(0.1);
  go_->setToolTip(tr("How long the way to the next view takes"));
  title_ = new QLabel;
  QFont bold = title_->font();
  bold.setBold(true);
  title_->setFont(bold);
  enlargement_ = new QLabel;
  enlargement_->setWordWrap(true);

  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(8);
  grid->addWidget(title_, 0, 0, 1, 4);
  const auto add = [&](int row, int column, QDoubleSpinBox* box) {
    auto* label = new QLabel(box->accessibleName());
    label->setBuddy(box);
    grid->addWidget(label, row, column);
    grid->addWidget(box, row, column + 1);
    connect(box, &QDoubleSpinBox::valueChanged, this, [this, box] { Typed(box); });
  };
  add(1, 0, left_);
  add(1, 2, top_);
  add(2, 0, width_);
  add(2, 2, height_);
  add(3, 0, hold_);
  add(3, 2, go_);
  grid->addWidget(enlargement_, 4, 0, 1, 4);
  grid->setColumnStretch(1, 1);
  grid->setColumnStretch(3, 1);
}

void ViewPanel::Show(const CanvasScene& scene, const StopTimes& times) {
  scene_ = scene;
  const int count = static_cast<int>(scene.views.size());
  const int at = scene.selected;
  const bool any = at >= 0 && at < count;
  for (QDoubleSpinBox* box : {left_, top_, width_, height_, hold_, go_}) box->setEnabled(any);
  if (!any) {
    title_->setText(count == 0 ? tr("A film of keys") : tr("No view selected"));
    enlargement_->clear();
    return;
  }
  title_->setText(at == 0 ? tr("Start") : at + 1 == count ? tr("End") : tr("Stop %1").arg(at + 1));
  const host::PhotoRect& part = scene.views[static_cast<size_t>(at)];
  ShowNumber(left_, part.x);
  ShowNumber(top_, part.y);
  ShowNumber(width_, part.width);
  ShowNumber(height_, part.height);
  ShowNumber(hold_, times[static_cast<size_t>(at)].hold);
  ShowNumber(go_, times[static_cast<size_t>(at)].go);
  go_->setEnabled(at + 1 < count);
  const double factor = Enlargement(part, scene.limits);
  enlargement_->setText(
      factor > 1.0
          ? tr("Enlarges the photo’s pixels %1 times").arg(locale().toString(factor, 'f', 2))
          : tr("Shows %1 pixels of the photo in each of the film’s")
                .arg(locale().toString(1.0 / factor, 'f', 2)));
}

void ViewPanel::Typed(const QDoubleSpinBox* box) {
  // A box may be left for good, and finish its number, when its view is.
  if (scene_.selected < 0 || scene_.selected >= static_cast<int>(scene_.views.size())) return;
  if (box == hold_ || box == go_) {
    emit TimesChanged(hold_->value(), go_->value());
    return;
  }
  host::PhotoRect part = scene_.views[static_cast<size_t>(scene_.selected)];
  if (box == left_) part.x = left_->value();
  if (box == top_) part.y = top_->value();
  if (box == width_ || box == height_) {
    const double width = box == width_ ? width_->value() : height_->value() / scene_.limits.shape;
    part = ViewAbout({part.CentreX(), part.CentreY()}, width, scene_.limits);
  }
  emit PartChanged(scene_.selected, Inside(part, scene_.limits), NewGesture());
}

}  // namespace kelto::editor
