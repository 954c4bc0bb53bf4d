// Answers dialogs of this process from a thread beside the one that they block.
#pragma once

#include <string>
#include <thread>
#include <vector>

namespace kelto::test {

/// What a user does to a dialog.
struct DialogAnswer {
  bool accept;
  std::string name;  ///< typed into a file dialog's name field first, unless empty
};

inline DialogAnswer Accept(const std::string& name = "") { return {true, name}; }
inline DialogAnswer Cancel() { return {false, ""}; }

/// What stood in a dialog.
struct SeenDialog {
  std::string title;
  std::string name;                ///< in a file dialog's name field
  std::vector<std::string> texts;  ///< of its labels
  size_t buttons = 0;
};

/// Answers the dialogs that come, one after the other, and notes what they show.
class DialogDriver {
 public:
  explicit DialogDriver(std::vector<DialogAnswer> answers);
  ~DialogDriver();
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;

  /// The dialogs, to be asked for after the call that shows them has come back. Fewer than there
  /// are answers when one did not come in time.
  const std::vector<SeenDialog>& Seen();

 private:
  void Drive();

  std::vector<DialogAnswer> answers_;
  std::vector<SeenDialog> seen_;
  std::thread thread_;
};

}  // namespace kelto::test
