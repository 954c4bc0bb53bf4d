// The move that the photo suggests, found by a process of the command.
#pragma once

#include <QObject>
#include <QProcess>
#include <vector>

#include "editor/document/document.h"
#include "host/plan/tour.h"

namespace kelto::editor {

/// Runs `kelto new PHOTO --move auto`, which decodes the photo in its sandbox, and deletes itself
/// when it has answered.
class MoveFinder : public QObject {
  Q_OBJECT

 public:
  MoveFinder(QString command, const Document& document, QObject* parent);
  ~MoveFinder() override;
  void Start();

 signals:
  void Found(const std::vector<kelto::host::TourView>& views);
  void Failed(const QString& reason);

 private:
  void Read(bool made);

  QString command_;
  Document document_;
  QProcess process_;
};

}  // namespace kelto::editor
