// Undo and redo.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "editor/document/document.h"

namespace kelto::editor {

/// The states that a document has gone through. All changes of one gesture are one step.
class History {
 public:
  /// Begins anew with a document that is as its file has it, or, with `saved` off, in no file yet.
  void Begin(Document document, bool saved);

  const Document& Current() const { return steps_[at_].document; }

  /// Makes `next` the current document; what was undone is forgotten. Changes of the same gesture
  /// that follow each other become one step; 0 is no gesture. `name` is what the user reads in the
  /// menu, such as "Move view". A change that changes nothing is no step.
  void Do(Document next, const std::string& name, int64_t gesture = 0);
  /// Another picture of a show is edited from now on; that is no step.
  void Look(size_t picture) { steps_[at_].document.picture = picture; }
  /// The document began as another text than its file has.
  void BeganFrom(const std::string& savedText) { savedText_ = savedText; }
  /// The next change is another step, whatever its gesture.
  void EndGesture() { gesture_ = 0; }

  bool CanUndo() const { return at_ > 0; }
  bool CanRedo() const { return at_ + 1 < steps_.size(); }
  void Undo();
  void Redo();
  /// The names of the steps that these would take back and repeat; empty where there is none.
  std::string UndoName() const { return CanUndo() ? steps_[at_].name : ""; }
  std::string RedoName() const { return CanRedo() ? steps_[at_ + 1].name : ""; }

  /// The current document has been written to its file, under the path given.
  void Saved(const std::string& path);
  /// Whether the document differs from what its file has.
  bool Modified() const { return !saved_ || Current().text != savedText_; }
  /// The text that the file had when it was read or written last; empty when it never was.
  const std::string& SavedText() const { return savedText_; }
  bool HasFile() const { return saved_; }

 private:
  struct Step {
    Document document;
    std::string name;  ///< of the change that led here
  };
  void ForgetOldest();

  std::vector<Step> steps_{{}};
  size_t at_ = 0;
  size_t bytes_ = 0;  ///< of all steps' texts
  int64_t gesture_ = 0;
  bool saved_ = false;
  std::string savedText_;
};

}  // namespace kelto::editor
