#include "editor/preview/sound_wave.h"

#include <utility>

#include "editor/messages/answers.h"
#include "editor/preview/drawing_process.h"

namespace kelto::editor {

SoundWave::SoundWave(QString program, QString module, QObject* parent)
    : QObject(parent), program_(std::move(program)), module_(std::move(module)) {}

SoundWave::~SoundWave() { delete process_; }

void SoundWave::Drop() {
  if (process_ == nullptr) return;
  // Later: it may be the process that is speaking.
  process_->disconnect(this);
  process_->deleteLater();
  process_ = nullptr;
}

void SoundWave::Want(const std::string& file) {
  if (file == file_) return;
  file_ = file;
  peaks_.clear();
  Drop();
  if (file_.empty()) return;
  process_ = new DrawingProcess(program_, module_, this);
  connect(process_, &DrawingProcess::Answered, this, [this](const StreamMessage& answer) {
    Drop();
    if (answer.kind != MessageKind::kSound) {
      emit Failed(QString::fromStdString(answer.body));
      return;
    }
    peaks_ = PeaksOf(answer.body);
    emit Read();
  });
  connect(process_, &DrawingProcess::Ended, this, [this](const QString& reason) {
    Drop();
    emit Failed(reason);
  });
  process_->Send(MessageKind::kSound, file_);
}

}  // namespace kelto::editor
