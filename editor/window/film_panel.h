// What holds for the whole film.
#pragma once

#include <QColor>
#include <QWidget>

#include "editor/window/session.h"

class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QPushButton;

namespace kelto::editor {

class FilmPanel : public QWidget {
  Q_OBJECT

 public:
  explicit FilmPanel(QWidget* parent = nullptr);
  void Show(const host::RenderPlan& plan);

 signals:
  void Changed(const QString& name, const kelto::editor::Session::Change& change);

 private:
  QComboBox* AddChoice(QFormLayout* form, const QString& name);
  void AskBackground();
  void ShowBackground(const host::RenderPlan& plan);

  QComboBox *size_, *rate_, *fields_, *law_, *path_, *filter_;
  QDoubleSpinBox* length_;
  QPushButton* colour_;
  QColor background_{Qt::black};
};

}  // namespace kelto::editor
