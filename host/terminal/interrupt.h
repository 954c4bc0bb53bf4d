// Ctrl-C and kill: noted, so that the command can clear up before it goes.
#pragma once

#include <atomic>
#include <string>

namespace kelto::host {

/// From now on an interrupt, termination or hang-up signal is only noted (the same one again, two
/// seconds later or more, ends the process at once), and a reader that went away or a file beyond
/// the size allowed is an ordinary write error.
void CatchInterrupts();

/// The signal noted, 0 when there was none.
int InterruptSignal();

/// Whether a signal was noted.
inline bool IsInterrupted() { return InterruptSignal() != 0; }

/// Throws Error when a signal was noted.
void CheckInterrupt();

/// While one lives, CatchInterrupts' signals do not wait to be noticed: they remove what is
/// unfinished and end the process, as does one that was noted before. For work that has no place to
/// ask for InterruptSignal, such as loading a photograph. Not on Windows, where they stay noted.
class InterruptsEndAtOnce {
 public:
  InterruptsEndAtOnce();
  ~InterruptsEndAtOnce();
  InterruptsEndAtOnce(const InterruptsEndAtOnce&) = delete;
  InterruptsEndAtOnce& operator=(const InterruptsEndAtOnce&) = delete;
};

/// A file that is removed where the process is ended at once while the object lives. Up to 16 of
/// them at a time; what is beyond that stays behind.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(std::string path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

 private:
  std::string path_;
  std::atomic<const char*>* place_ = nullptr;
};

/// Ends the process as `signal` would have, so that whoever started it sees that.
[[noreturn]] void DieOf(int signal);

}  // namespace kelto::host
