// The films being made.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "editor/document/document.h"
#include "editor/window/render_job.h"

class QTemporaryDir;
class QVBoxLayout;

namespace kelto::editor {

/// A row for each film: progress, cancel, show in folder. One film is made at a time: the command
/// uses every core by itself.
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
  const QString& Command() const { return command_; }

 private:
  void AddRow(RenderJob* job);
  void StartNext();

  QString command_;
  std::unique_ptr<QTemporaryDir> projects_;  ///< the documents as they were when films were added
  std::vector<RenderJob*> jobs_;
  QVBoxLayout* rows_;
};

/// The command's verb that makes the document's film.
QString VerbFor(const Document& document);

/// Writes `document` into `folder` as a project of its own; its path. Throws Error.
QString SnapshotOf(const Document& document, const QString& folder, int number);

}  // namespace kelto::editor
