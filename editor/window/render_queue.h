// The films being made.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "editor/document/document.h"
#include "editor/window/render_job.h"

class QPushButton;
class QTemporaryDir;
class QVBoxLayout;

namespace kelto::editor {

/// A row for each film: progress, cancel, show in folder, make one that failed again. One film is
/// made at a time: the command uses every core by itself.
class RenderQueue : public QWidget {
  Q_OBJECT

 public:
  /// `command` is kelto's path.
  explicit RenderQueue(QString command, QWidget* parent = nullptr);
  ~RenderQueue() override;

  /// Adds a film of the document as it is now; later changes do not change the film. Throws Error.
  RenderJob* Add(const Document& document, const QString& film, const QStringList& options);
  /// Films that are not made yet.
  int Unfinished() const;
  /// Films that are made, were cancelled or failed.
  int Finished() const { return static_cast<int>(jobs_.size()) - Unfinished(); }
  const QString& Command() const { return command_; }

 public slots:
  /// Takes the rows of finished films away; the films stay.
  void ClearFinished();

 signals:
  /// There are other films, or one of them has ended.
  void FilmsChanged();

 private:
  void AddRow(RenderJob* job);
  void StartNext();

  QString command_;
  std::unique_ptr<QTemporaryDir> projects_;  ///< the documents as they were when films were added
  int added_ = 0;                            ///< since the editor began
  std::vector<RenderJob*> jobs_;
  QVBoxLayout* rows_;
  QPushButton* clear_;
};

/// The command's verb that makes the document's film.
QString VerbFor(const Document& document);

/// Writes `document` into `folder` as a project of its own; its path. Throws Error.
QString SnapshotOf(const Document& document, const QString& folder, int number);

}  // namespace kelto::editor
