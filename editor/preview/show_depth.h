// Whether the film of a show is drawn deep, as the process that draws finds out from its photos.
#pragma once

#include <QObject>
#include <QString>
#include <map>
#include <string>
#include <vector>

#include "editor/messages/answers.h"
#include "editor/messages/message_stream.h"
#include "editor/rules/fades_around.h"

namespace kelto::editor {

class DrawingProcess;

/// Looks at each photo once, in a run of kelto-preview beside those that draw, for as long as shows
/// have it.
class ShowDepth : public QObject {
  Q_OBJECT

 public:
  ShowDepth(QString program, QString module, QObject* parent);

  /// This is the show from now on.
  void SetShow(const ShowDepths& show);
  /// By the photos that are known so far; those that cannot be read are left out of films.
  bool IsDeep() const;

 signals:
  /// IsDeep has become another.
  void Changed();

 private:
  /// Has the photos looked at that are not known, unless a run is at it.
  void LookAtUnknown();
  /// What the run says of the next photo.
  void Learn(const PhotoDepth& depth);
  void EndRun();

  QString program_, module_;
  ShowDepths show_;
  std::map<std::string, PhotoDepth> known_;
  std::vector<std::string> asked_;  ///< of the run; `answered_` of them are known
  size_t answered_ = 0;
  DrawingProcess* process_ = nullptr;  ///< this object's
};

}  // namespace kelto::editor
