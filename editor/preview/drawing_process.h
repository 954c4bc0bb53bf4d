// The process that draws, as an object.
#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <string>

#include "editor/messages/message_stream.h"

namespace kelto::editor {

/// One run of kelto-preview. Ends with this object.
class DrawingProcess : public QObject {
  Q_OBJECT

 public:
  DrawingProcess(const QString& program, const QString& module, QObject* parent);
  ~DrawingProcess() override;

  void Send(MessageKind kind, const std::string& body);

 signals:
  void Answered(const kelto::editor::StreamMessage& answer);
  /// It has ended by itself, or could not be started.
  void Ended(const QString& reason);

 private:
  void Read();
  void End(const QString& reason);

  QProcess process_;
  MessageReader reader_;
  bool ended_ = false;
};

}  // namespace kelto::editor
