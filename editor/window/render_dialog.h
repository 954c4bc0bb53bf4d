// What kind of film to make.
#pragma once

#include <QDialog>
#include <QTemporaryDir>
#include <memory>

#include "editor/document/document.h"
#include "editor/window/render_job.h"

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

namespace kelto::editor {

/// Asks for name, format, codec, colour depth, size and filter, and reckons how long the film will
/// take and how large it will be by making a second of it.
class RenderDialog : public QDialog {
  Q_OBJECT

 public:
  RenderDialog(QString command, const Document& document, QWidget* parent = nullptr);

  QString Film() const;
  /// Further words for `kelto render`.
  QStringList Options() const;

 private:
  void ShowCodecs();
  /// The depths of the codec; the one chosen stays where there is such.
  void ShowDepths();
  void ShowKind();
  void AskName();
  void Estimate();
  void ShowEstimate();

  QString command_;
  Document document_;
  int32_t frames_ = 1;
  QTemporaryDir folder_;
  std::unique_ptr<RenderJob> sample_;
  int32_t sampleFrames_ = 1;
  QLineEdit* name_;
  QComboBox *kind_, *codec_, *depth_, *size_, *quality_, *filter_;
  QLabel* estimate_;
  QDialogButtonBox* buttons_;
};

}  // namespace kelto::editor
