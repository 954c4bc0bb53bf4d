// A process that works for this one.
#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/processes/message.h"
#include "host/terminal/library_text.h"

namespace kelto::host {

/// What a worker does when its owner is gone, or asks it to end.
enum class WorkerEnd {
  kAtOnce,   ///< it dies; interrupts from the terminal are its owner's business
  kClearUp,  ///< it gets SIGTERM, which it notes like any command
};

/// A copy of this process that does one thing and ends. It never outlives its owner. To be started
/// while this process has no other thread.
class Worker {
 public:
  /// `work` runs in the worker. What it throws arrives here as a message, and so do the lines that
  /// it prints with PrintMessage; its standard output goes nowhere. Throws Error when the system
  /// allows no more processes.
  Worker(WorkerEnd end, const std::function<void(Channel&)>& work);
  /// Ends the worker and waits for it.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  Channel& Line() { return *line_; }
  /// What libraries have printed in it, and it has not printed as messages; see LibraryText.
  std::vector<std::string> TakeLibraryText() { return libraryText_.Take(); }
  /// Asks a worker that clears up to do so; the destructor waits.
  void Stop();
  /// Waits for its end, which has to be due, and says how it came, for a worker that still owed
  /// something: "was ended by signal 9 (Killed)", or "ended before it was done".
  std::string WaitForEnd();

 private:
  WorkerEnd end_;
  bool asked_ = false;  ///< to end
  pid_t process_ = -1;
  LibraryText libraryText_;
  std::unique_ptr<Channel> line_;
};

}  // namespace kelto::host
