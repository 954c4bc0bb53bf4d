// Runs the built command, as a shell would.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/host/support/pictures.h"
#include "tests/support/file_bytes.h"

namespace kelto::test {

struct Outcome {
  int code = -1;   ///< exit code, -1 when a signal ended the command
  int signal = 0;  ///< that signal
  std::string out;
  std::string err;      ///< without lines of progress, which only slow machines get to see
  int64_t peakMiB = 0;  ///< memory that the largest of its processes held at the most
};

using Words = std::vector<std::string>;

/// A command under way.
class Command {
 public:
  /// Starts `kelto` with these arguments. Its standard output goes to the file `output` and its
  /// standard error to `errors`, or, when those are empty, into the outcome.
  explicit Command(const Words& arguments, const std::string& output = "",
                   const std::string& errors = "", const std::string& program = KELTO_COMMAND);
  /// Kills it where nobody waited for its end, as in a test that failed before.
  ~Command();
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  /// -1 when its end has been waited for.
  pid_t Process() const { return process_; }
  void Signal(int signal) const;
  Outcome Wait();

 private:
  TempFolder folder_;
  std::string output_, errors_;
  pid_t process_ = -1;
};

/// Runs `kelto` to its end.
Outcome RunKelto(const Words& arguments, const std::string& output = "");

/// Runs a shell script to its end. In it, "$0" is `kelto`.
Outcome RunShell(const std::string& script);

/// Processes that `parent` has begun and that have not ended.
std::vector<pid_t> ChildrenOf(pid_t parent);

/// Whether a process has not ended. One that nobody has waited for yet keeps its number, and where
/// the first process of a container waits for none it keeps it for good.
bool IsRunning(pid_t process);

/// `kelto render PHOTO -o OUT`, small and short unless `more` says otherwise.
Outcome Render(const std::string& photo, const std::string& out, const Words& more = {});

/// Whether `text` is one line that begins with "kelto: ".
bool IsOneLine(const std::string& text);

/// Names in a folder, sorted, hidden ones too.
std::vector<std::string> NamesIn(const TempFolder& folder);

}  // namespace kelto::test
