#include "editor/preview/thumbnails.h"

#include <utility>

#include "editor/messages/answers.h"
#include "editor/messages/requests.h"
#include "editor/preview/drawing_process.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

QImage ImageOf(const StreamMessage& answer) {
  if (answer.kind != MessageKind::kFrame) return {};
  try {
    const PictureBody frame = PictureOf(answer.body);
    const host::FrameSize size = frame.head.size;
    return QImage(frame.pixels, size.width, size.height, size.width * 4, QImage::Format_RGB32)
        .copy();
  } catch (const host::Error&) {
    return {};
  }
}

}  // namespace

Thumbnails::Thumbnails(QString program, QString module, QSize size, QObject* parent)
    : QObject(parent), program_(std::move(program)), module_(std::move(module)), size_(size) {}

Thumbnails::~Thumbnails() { delete process_; }

void Thumbnails::Want(const std::vector<std::string>& photos) {
  wanted_.clear();
  for (const std::string& photo : photos) {
    if (photo != current_ && made_.count(photo) == 0) wanted_.push_back(photo);
  }
  Next();
}

QImage Thumbnails::Of(const std::string& photo) const {
  const auto found = made_.find(photo);
  return found == made_.end() ? QImage() : found->second;
}

void Thumbnails::Next() {
  // A slot of Made may have asked for the next one already.
  if (process_ != nullptr) return;
  while (!wanted_.empty() && made_.count(wanted_.front()) > 0) wanted_.pop_front();
  if (wanted_.empty()) return;
  current_ = wanted_.front();
  wanted_.pop_front();
  process_ = new DrawingProcess(program_, module_, this);
  connect(process_, &DrawingProcess::Answered, this,
          [this](const StreamMessage& answer) { Take(ImageOf(answer)); });
  connect(process_, &DrawingProcess::Ended, this, [this] { Take({}); });
  process_->Send(MessageKind::kThumbnail,
                 BodyOf(ThumbnailRequest{{size_.width(), size_.height()}, current_}));
}

void Thumbnails::Take(const QImage& picture) {
  made_[std::exchange(current_, "")] = picture;
  if (process_ != nullptr) {
    // Later: it is the process that is speaking.
    process_->disconnect(this);
    process_->deleteLater();
    process_ = nullptr;
  }
  emit Made();
  Next();
}

}  // namespace kelto::editor
