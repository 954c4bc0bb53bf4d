// A screen that nobody sees, with a user who presses keys and looks.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

#include "tests/host/support/pictures.h"

namespace kelto::test {

/// Runs a virtual X display, and makes it this process's and its children's, while it lives.
class Screen {
 public:
  Screen();
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Waits for a window whose title matches `title`, a regular expression, and gives it the
  /// keyboard; what keys and pictures are of from then on. False when none came.
  bool Find(const std::string& title);
  std::string Title() const;
  /// Waits until the title fulfils `wanted`; the last title in any case.
  std::string WaitForTitle(const std::function<bool(const std::string&)>& wanted,
                           double seconds = 20.0) const;
  /// The same, until it contains `text`.
  std::string WaitForTitle(const std::string& text, double seconds = 20.0) const;
  /// `names` are X's, such as "space" or "period", several with spaces between.
  void Press(const std::string& names) const;
  /// Moves the pointer to a place in the window and presses the left button there.
  void Click(int x, int y) const;
  void Drag(int fromX, int fromY, int toX, int toY) const;
  /// The window's pixels; throws when it is gone, or partly outside the screen.
  Picture Look() const;

 private:
  std::string Do(const std::string& command) const;

  pid_t server_ = -1;  ///< a process, once constructed
  std::string window_;
};

}  // namespace kelto::test
