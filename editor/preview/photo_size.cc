#include "editor/preview/photo_size.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <algorithm>

#include "editor/messages/answers.h"
#include "editor/messages/message_stream.h"
#include "editor/messages/requests.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

/// Of a photo on a slow network, too.
constexpr int kPatienceMilliseconds = 30000;
constexpr int kProgressMilliseconds = 200;

/// Bytes that come at once, of sizes and of sentences that say why there is none.
constexpr size_t kMostAnswer = 1 << 20;

/// A run of the program that reads sizes.
class SizeProcess {
 public:
  SizeProcess(const QString& program, const QString& module,
              const std::vector<std::string>& photos) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(program, {module});
    if (!process_.waitForStarted(kPatienceMilliseconds)) {
      throw host::Error(program.toStdString() +
                        ": cannot be started: " + process_.errorString().toStdString());
    }
    const std::string body = BodyOf(photos);
    process_.write(QByteArray::fromStdString(MessageHead(MessageKind::kSize, body.size()) + body));
    process_.closeWriteChannel();
  }
  ~SizeProcess() {
    // It writes no files that it could leave half-written.
    process_.kill();
    process_.waitForFinished();
  }

  /// The next photo's size. Throws Error; Ended says whether no other will come.
  PixelSize Next(const std::string& photo, const std::function<void()>& waiting) {
    ended_ = true;  // but for an answer
    const std::string reader = photo + ": the process that reads it ";
    const StreamMessage answer = Answer(reader, waiting);
    const bool failed = answer.kind == MessageKind::kFailed;
    if (!failed && answer.kind != MessageKind::kSize) {
      throw host::Error(reader + "sent what is no size");
    }
    ended_ = false;
    if (failed) throw host::Error(answer.body);
    return SizeOf(answer.body);
  }
  bool Ended() const { return ended_; }

 private:
  StreamMessage Answer(const std::string& reader, const std::function<void()>& waiting) {
    const QDeadlineTimer deadline(kPatienceMilliseconds);
    for (;;) {
      if (auto message = messages_.Next()) {
        received_ = 0;
        return std::move(*message);
      }
      const QByteArray bytes = process_.readAllStandardOutput();
      received_ += static_cast<size_t>(bytes.size());
      if (received_ > kMostAnswer) throw host::Error(reader + "sent what is no size");
      messages_.Add({bytes.constData(), static_cast<size_t>(bytes.size())});
      if (!bytes.isEmpty()) continue;
      if (process_.state() == QProcess::NotRunning) throw host::Error(reader + HowItEnded());
      if (deadline.hasExpired()) throw host::Error(reader + "takes too long");
      process_.waitForReadyRead(kProgressMilliseconds);
      waiting();
    }
  }

  std::string HowItEnded() const {
    if (process_.exitStatus() == QProcess::CrashExit) return "stopped unexpectedly";
    return "ended with code " + std::to_string(process_.exitCode());
  }

  QProcess process_;
  MessageReader messages_;
  size_t received_ = 0;
  bool ended_ = false;
};

}  // namespace

FoundSizes FindPhotoSizes(const QString& program, const QString& module,
                          const std::vector<std::string>& photos, const SizesProgress& progress) {
  class Cancelled {};
  FoundSizes found;
  size_t done = 0;
  const auto waiting = [&] {
    if (progress && !progress(done)) throw Cancelled();
  };
  try {
    while (done < photos.size()) {
      SizeProcess process(program, module, {photos.begin() + done, photos.end()});
      while (done < photos.size() && !process.Ended()) {
        FoundSize& one = found[photos[done]];
        try {
          one.size = process.Next(photos[done], waiting);
        } catch (const host::Error& error) {
          one.fault = error.what();
        }
        ++done;
        waiting();
      }
    }
  } catch (const Cancelled&) {
    for (; done < photos.size(); ++done) {
      found[photos[done]].fault = photos[done] + ": not read; reading was cancelled";
    }
  }
  return found;
}

PixelSize FindPhotoSize(const QString& program, const QString& module, const std::string& photo) {
  const FoundSize found = FindPhotoSizes(program, module, {photo})[photo];
  if (!found.fault.empty()) throw host::Error(found.fault);
  return found.size;
}

}  // namespace kelto::editor
