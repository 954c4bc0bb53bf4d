#include "editor/preview/drawing_process.h"

#include "host/base/error.h"

namespace kelto::editor {

DrawingProcess::DrawingProcess(const QString& program, const QString& module, QObject* parent)
    : QObject(parent) {
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  connect(&process_, &QProcess::readyReadStandardOutput, this, &DrawingProcess::Read);
  connect(&process_, &QProcess::errorOccurred, this, [this, program](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) {
      End(tr("%1: cannot be started: %2").arg(program, process_.errorString()));
    }
  });
  connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
    End(status == QProcess::CrashExit
            ? tr("the preview stopped unexpectedly; the next change starts it again")
            : tr("the preview ended with code %1; the next change starts it again").arg(code));
  });
  process_.start(program, {module});
}

DrawingProcess::~DrawingProcess() {
  process_.disconnect(this);
  // It writes no files that it could leave half-written.
  process_.kill();
  process_.waitForFinished(1000);
}

void DrawingProcess::Send(MessageKind kind, const std::string& body) {
  const std::string head = MessageHead(kind, body.size());
  process_.write(head.data(), static_cast<qint64>(head.size()));
  process_.write(body.data(), static_cast<qint64>(body.size()));
}

void DrawingProcess::Read() {
  const QByteArray bytes = process_.readAllStandardOutput();
  reader_.Add({bytes.constData(), static_cast<size_t>(bytes.size())});
  try {
    while (const auto answer = reader_.Next()) emit Answered(*answer);
  } catch (const host::Error& error) {
    End(QString::fromUtf8(error.what()));
  }
}

void DrawingProcess::End(const QString& reason) {
  if (ended_) return;
  ended_ = true;
  // Whoever started the process may still be at it.
  QMetaObject::invokeMethod(
      this, [this, reason] { emit Ended(reason); }, Qt::QueuedConnection);
}

}  // namespace kelto::editor
