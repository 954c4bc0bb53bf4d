#include "editor/preview/show_depth.h"

#include <algorithm>
#include <set>
#include <utility>

#include "editor/messages/plain_bytes.h"
#include "editor/messages/requests.h"
#include "editor/preview/drawing_process.h"

namespace kelto::editor {

ShowDepth::ShowDepth(QString program, QString module, QObject* parent)
    : QObject(parent), program_(std::move(program)), module_(std::move(module)) {}

void ShowDepth::SetShow(const ShowDepths& show) {
  show_ = show;
  const std::set<std::string> photos(show_.photos.begin(), show_.photos.end());
  std::erase_if(known_, [&](const auto& each) { return !photos.contains(each.first); });
  LookAtUnknown();
}

bool ShowDepth::IsDeep() const {
  if (!show_.possible) return false;
  bool deep = show_.needed;
  for (const auto& [photo, depth] : known_) {
    if (depth.possible == 0) return false;
    deep = deep || depth.deep != 0;
  }
  return deep;
}

void ShowDepth::LookAtUnknown() {
  if (process_ != nullptr || !show_.possible) return;
  asked_.clear();
  answered_ = 0;
  std::set<std::string> seen;
  for (const std::string& photo : show_.photos) {
    if (!known_.contains(photo) && seen.insert(photo).second) asked_.push_back(photo);
  }
  if (asked_.empty()) return;
  process_ = new DrawingProcess(program_, module_, this);
  connect(process_, &DrawingProcess::Answered, this, [this](const StreamMessage& answer) {
    // What cannot be read, films do without.
    const bool known =
        answer.kind == MessageKind::kDepth && answer.body.size() == sizeof(PhotoDepth);
    Learn(known ? FromBytes<PhotoDepth>(answer.body) : PhotoDepth{});
    if (answered_ == asked_.size()) EndRun();
  });
  connect(process_, &DrawingProcess::Ended, this, [this] {
    Learn({});  // of the photo that it was at, which the next run leaves out
    EndRun();
  });
  process_->Send(MessageKind::kDepth, BodyOf(asked_));
}

void ShowDepth::EndRun() {
  process_->disconnect(this);
  process_->deleteLater();  // it may be the one that is speaking
  process_ = nullptr;
  LookAtUnknown();
}

void ShowDepth::Learn(const PhotoDepth& depth) {
  const bool before = IsDeep();
  const std::string& photo = asked_[answered_++];
  if (std::find(show_.photos.begin(), show_.photos.end(), photo) != show_.photos.end()) {
    known_[photo] = depth;
  }
  if (IsDeep() != before) emit Changed();
}

}  // namespace kelto::editor
