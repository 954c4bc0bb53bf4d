#include "editor/document/history.h"

#include <utility>

namespace kelto::editor {
namespace {

/// Of all steps together; a project of 500 stops takes 30,000 bytes.
constexpr size_t kMaxBytes = size_t{64} << 20;

}  // namespace

void History::Begin(Document document, bool saved) {
  saved_ = saved;
  savedText_ = saved ? document.text : "";
  bytes_ = document.text.size();
  steps_ = {{std::move(document), ""}};
  at_ = 0;
  gesture_ = 0;
}

void History::Do(Document next, const std::string& name, int64_t gesture) {
  const bool goesOn = gesture != 0 && gesture == gesture_ && at_ > 0 && !CanRedo();
  gesture_ = gesture;
  if (next == Current()) return;
  while (CanRedo()) {
    bytes_ -= steps_.back().document.text.size();
    steps_.pop_back();
  }
  bytes_ += next.text.size();
  if (goesOn) {
    bytes_ -= Current().text.size();
    steps_[at_].document = std::move(next);
  } else {
    steps_.push_back({std::move(next), name});
    ++at_;
    ForgetOldest();
  }
}

void History::ForgetOldest() {
  while (bytes_ > kMaxBytes && at_ > 1) {
    bytes_ -= steps_.front().document.text.size();
    steps_.erase(steps_.begin());
    --at_;
  }
}

void History::Undo() {
  if (CanUndo()) --at_;
  gesture_ = 0;
}

void History::Redo() {
  if (CanRedo()) ++at_;
  gesture_ = 0;
}

void History::Saved(const std::string& path) {
  if (path != Current().path) {
    // The steps before it belong to another file's folder.
    for (Step& step : steps_) {
      if (&step != &steps_[at_]) step.document = MovedTo(step.document, path);
    }
    steps_[at_].document = MovedTo(steps_[at_].document, path);
  }
  saved_ = true;
  savedText_ = Current().text;
  gesture_ = 0;
}

}  // namespace kelto::editor
