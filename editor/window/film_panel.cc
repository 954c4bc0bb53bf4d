#include "editor/window/film_panel.h"

#include <QtWidgets>

#include "catalogue/parameters.h"
#include "editor/document/settings.h"
#include "editor/window/colour_dialog.h"
#include "host/options/choices.h"

namespace kelto::editor {
namespace {

struct FrameShape {
  int32_t width, height;
};
constexpr FrameShape kSizes[] = {{1920, 1080}, {3840, 2160}, {1280, 720},  {1080, 1920},
                                 {1080, 1080}, {720, 576},   {1440, 1080}, {4096, 2160}};
constexpr const char* kRates[] = {"24", "25",         "30",         "50",
                                  "60", "24000/1001", "30000/1001", "60000/1001"};

QString SizeText(int32_t width, int32_t height) {
  return QString("%1 × %2").arg(width).arg(height);
}

/// Shows `data` in a box, as an entry of its own where there is none.
void ShowChoice(QComboBox* box, const QVariant& data, const QString& text) {
  const QSignalBlocker quiet(box);
  if (box->findData(data) < 0) box->addItem(text, data);
  box->setCurrentIndex(box->findData(data));
}

std::string EntryHeld(const host::RenderPlan& plan, const char* parameter) {
  const host::SettingValue* value = host::HeldValue(plan.FindSetting(parameter));
  const auto* entry = value == nullptr ? nullptr : std::get_if<std::string>(value);
  return entry == nullptr ? "" : *entry;
}

/// "Hi Qual" of "Filter: Kelto Hi Qual": names of methods, the same in every language.
QString ShortName(const std::string& entry) {
  return QString::fromStdString(entry).section(": ", -1).remove("Kelto ");
}

}  // namespace

QComboBox* FilmPanel::AddChoice(QFormLayout* form, const QString& name) {
  auto* box = new QComboBox;
  box->setAccessibleName(name);
  form->addRow(name, box);
  return box;
}

FilmPanel::FilmPanel(QWidget* parent) : QWidget(parent) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  auto* title = new QLabel(tr("Film"));
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  column->addWidget(title);
  auto* form = new QFormLayout;
  column->addLayout(form);

  size_ = AddChoice(form, tr("Size"));
  for (const FrameShape& shape : kSizes) {
    size_->addItem(SizeText(shape.width, shape.height), QSize(shape.width, shape.height));
  }
  rate_ = AddChoice(form, tr("Frames a second"));
  for (const char* rate : kRates) rate_->addItem(rate, QString(rate));
  length_ = new QDoubleSpinBox;
  length_->setRange(0.04, 86400.0);
  length_->setSuffix(tr(" s"));
  length_->setKeyboardTracking(false);
  length_->setAccessibleName(tr("Length"));
  form->addRow(tr("Length"), length_);
  law_ = AddChoice(form, tr("Motion"));
  law_->addItem(tr("Steady"), QString("steady"));
  law_->addItem(tr("Fly"), QString("fly"));
  law_->addItem(tr("Linear"), QString("linear"));
  path_ = AddChoice(form, tr("Path"));
  path_->addItem(tr("Straight"), QString("Path: Linear"));
  path_->addItem(tr("Smooth"), QString("Path: Spline"));
  filter_ = AddChoice(form, tr("Filter"));
  for (const catalogue::Entry& choice : host::ListOf("filter").choices) {
    filter_->addItem(ShortName(choice.text), QString(choice.text));
  }
  fields_ = AddChoice(form, tr("Fields"));
  fields_->addItem(tr("Whole frames"), 0);
  fields_->addItem(tr("Top field first"), 1);
  fields_->addItem(tr("Bottom field first"), 2);
  colour_ = new QPushButton(tr("Choose…"));
  colour_->setAccessibleName(tr("Colour beside the photo"));
  form->addRow(tr("Background"), colour_);

  connect(size_, &QComboBox::activated, this, [this] {
    const QSize size = size_->currentData().toSize();
    emit Changed(tr("Change Size"),
                 [=](const Document& d) { return WithSize(d, size.width(), size.height()); });
  });
  connect(rate_, &QComboBox::activated, this, [this] {
    const std::string rate = rate_->currentData().toString().toStdString();
    emit Changed(tr("Change Rate"), [=](const Document& d) { return WithRate(d, rate); });
  });
  connect(length_, &QDoubleSpinBox::valueChanged, this, [this](double seconds) {
    emit Changed(tr("Change Length"), [=](const Document& d) { return WithLength(d, seconds); });
  });
  connect(law_, &QComboBox::activated, this, [this] {
    const auto law = host::ParseMotionLaw(law_->currentData().toString().toStdString());
    emit Changed(tr("Change Motion"), [=](const Document& d) { return WithMotion(d, law); });
  });
  connect(fields_, &QComboBox::activated, this, [this] {
    constexpr host::FieldOrder kOrders[] = {host::FieldOrder::kProgressive,
                                            host::FieldOrder::kTopFirst,
                                            host::FieldOrder::kBottomFirst};
    const host::FieldOrder order = kOrders[fields_->currentData().toInt()];
    emit Changed(tr("Change Fields"), [=](const Document& d) { return WithFields(d, order); });
  });
  for (const auto& [box, parameter] : {std::pair{path_, "path"}, {filter_, "filter"}}) {
    connect(box, &QComboBox::activated, this, [this, box = box, parameter = parameter] {
      const std::string entry = box->currentData().toString().toStdString();
      emit Changed(tr("Change Setting"),
                   [=](const Document& d) { return WithParameter(d, parameter, entry); });
    });
  }
  connect(colour_, &QPushButton::clicked, this, &FilmPanel::AskBackground);
}

void FilmPanel::AskBackground() {
  const QColor chosen = AskColour(this, tr("Colour beside the photo"), background_);
  if (!chosen.isValid()) return;
  const host::Colour colour{static_cast<uint8_t>(chosen.red()),
                            static_cast<uint8_t>(chosen.green()),
                            static_cast<uint8_t>(chosen.blue())};
  emit Changed(tr("Change Background"), [=](const Document& d) {
    return WithParameter(WithParameter(d, key::kBackgroundColor, host::BackgroundFor(colour)),
                         "compositeover", std::string("Background: Color"));
  });
}

void FilmPanel::ShowBackground(const host::RenderPlan& plan) {
  const host::SettingValue* held = host::HeldValue(plan.FindSetting(key::kBackgroundColor));
  const auto* value = held == nullptr ? nullptr : std::get_if<std::array<double, 3>>(held);
  const host::Colour colour = value == nullptr ? host::Colour{} : host::ColourOf(*value);
  const QColor background(colour.red, colour.green, colour.blue);
  if (background == background_ && !colour_->icon().isNull()) return;
  background_ = background;
  QPixmap swatch(colour_->iconSize() * devicePixelRatioF());
  swatch.setDevicePixelRatio(devicePixelRatioF());
  swatch.fill(background_);
  QPainter painter(&swatch);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(QRect(QPoint(), colour_->iconSize() - QSize(1, 1)));
  painter.end();
  colour_->setIcon(swatch);
  colour_->setAccessibleDescription(background_.name());
}

void FilmPanel::Show(const host::RenderPlan& plan) {
  const host::FilmFormat& format = plan.format;
  ShowChoice(size_, QSize(format.size.width, format.size.height),
             SizeText(format.size.width, format.size.height));
  const QString rate =
      format.rate.denominator == 1
          ? QString::number(format.rate.numerator)
          : QString("%1/%2").arg(format.rate.numerator).arg(format.rate.denominator);
  ShowChoice(rate_, rate, rate);
  {
    const QSignalBlocker quiet(length_);
    length_->setValue(plan.frames / format.rate.PerSecond());
  }
  ShowChoice(law_, QString::fromStdString(host::WordOf(plan.motion)), "");
  const std::string path = EntryHeld(plan, "path"), filter = EntryHeld(plan, "filter");
  ShowChoice(path_, QString::fromStdString(path.empty() ? "Path: Linear" : path), "");
  if (!filter.empty()) ShowChoice(filter_, QString::fromStdString(filter), ShortName(filter));
  ShowChoice(fields_,
             format.fields == host::FieldOrder::kTopFirst      ? 1
             : format.fields == host::FieldOrder::kBottomFirst ? 2
                                                               : 0,
             "");
  ShowBackground(plan);
}

}  // namespace kelto::editor
