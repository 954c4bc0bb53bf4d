#include "editor/preview/photo_size.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <optional>

#include "editor/messages/answers.h"
#include "editor/messages/message_stream.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

/// Of a photo on a slow network, too.
constexpr int kPatienceMilliseconds = 30000;

/// Bytes of an answer: a size, or the sentence that says why there is none.
constexpr size_t kMostAnswer = 65536;

std::string HowItEnded(const QProcess& process) {
  if (process.exitStatus() == QProcess::CrashExit) return "stopped unexpectedly";
  return "ended with code " + std::to_string(process.exitCode());
}

StreamMessage Answer(QProcess& process, const std::string& photo) {
  const QDeadlineTimer deadline(kPatienceMilliseconds);
  const std::string reader = photo + ": the process that reads it ";
  MessageReader messages;
  size_t received = 0;
  for (;;) {
    const QByteArray bytes = process.readAllStandardOutput();
    received += static_cast<size_t>(bytes.size());
    if (received > kMostAnswer) throw host::Error(reader + "sent what is no size");
    messages.Add({bytes.constData(), static_cast<size_t>(bytes.size())});
    if (auto message = messages.Next()) return std::move(*message);
    if (process.state() == QProcess::NotRunning) throw host::Error(reader + HowItEnded(process));
    if (deadline.hasExpired()) throw host::Error(reader + "takes too long");
    process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
  }
}

}  // namespace

PixelSize FindPhotoSize(const QString& program, const QString& module, const std::string& photo) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.start(program, {module});
  if (!process.waitForStarted(kPatienceMilliseconds)) {
    throw host::Error(program.toStdString() +
                      ": cannot be started: " + process.errorString().toStdString());
  }
  process.write(QByteArray::fromStdString(MessageHead(MessageKind::kSize, photo.size()) + photo));
  process.closeWriteChannel();
  std::optional<StreamMessage> answer;
  try {
    answer = Answer(process, photo);
  } catch (...) {
    process.kill();
    process.waitForFinished();
    throw;
  }
  // It writes no files that it could leave half-written.
  process.kill();
  process.waitForFinished();
  if (answer->kind == MessageKind::kFailed) throw host::Error(answer->body);
  if (answer->kind != MessageKind::kSize) {
    throw host::Error(photo + ": the process that reads it sent what is no size");
  }
  return SizeOf(answer->body);
}

}  // namespace kelto::editor
