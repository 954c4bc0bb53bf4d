#include "host/processes/worker.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// This process's ends of the lines to its workers. A new worker closes its copies of them, or the
/// others would not notice that their owner is gone.
std::vector<int>& OwnersEnds() {
  static std::vector<int> ends;
  return ends;
}

void SettleSignals(WorkerEnd end, pid_t owner) {
  if (end == WorkerEnd::kAtOnce) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_IGN);
  }
  prctl(PR_SET_PDEATHSIG, end == WorkerEnd::kAtOnce ? SIGKILL : SIGTERM);
  // The owner may have gone before that took hold.
  if (getppid() != owner) _exit(1);
}

/// A reader of the owner's standard output has to see its end when the owner goes.
void LeaveStandardOutput() {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0) return;
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

void Work(Channel& line, const std::function<void(Channel&)>& work) {
  SetMessageSink([&](const std::string& text) { line.Send({MessageKind::kConsole, text}); });
  try {
    work(line);
  } catch (const UsageError& error) {
    line.Send({MessageKind::kMisused, error.what()});
  } catch (const std::bad_alloc&) {
    line.Send({MessageKind::kFailed, "there is not enough memory"});
  } catch (const std::exception& error) {
    line.Send({MessageKind::kFailed, error.what()});
  }
}

}  // namespace

Worker::Worker(WorkerEnd end, const std::function<void(Channel&)>& work) : end_(end) {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
    throw Error("cannot start a process: " + std::generic_category().message(errno));
  }
  const pid_t owner = getpid();
  process_ = fork();
  if (process_ == 0) {
    SettleSignals(end, owner);
    // Forgotten too: a worker of this one's own may get their numbers for its line.
    for (const int other : std::exchange(OwnersEnds(), {})) close(other);
    close(sockets[0]);
    LeaveStandardOutput();
    libraryText_.Attach();
    Channel line(sockets[1]);
    try {
      Work(line, work);
    } catch (...) {
      // Not even what failed could be reported. The owner's objects, of which this is a copy, must
      // not end here: they would end other workers.
      _exit(1);
    }
    // Not exit(): what this process inherited is not its own to clear up.
    _exit(0);
  }
  const int cause = errno;
  close(sockets[1]);
  line_ = std::make_unique<Channel>(sockets[0]);
  if (process_ < 0) {
    throw Error("cannot start a process: " + std::generic_category().message(cause));
  }
  OwnersEnds().push_back(sockets[0]);
}

Worker::~Worker() {
  std::erase(OwnersEnds(), line_->Socket());
  if (process_ < 0) return;
  if (end_ == WorkerEnd::kAtOnce) {
    kill(process_, SIGKILL);
  } else {
    Stop();
  }
  WaitForEnd();
}

void Worker::Stop() {
  // Another SIGTERM, much later, would end it while it clears up.
  if (process_ < 0 || asked_) return;
  asked_ = true;
  kill(process_, SIGTERM);
}

std::string Worker::WaitForEnd() {
  int status = 0;
  while (waitpid(process_, &status, 0) < 0) {
    if (errno != EINTR) break;
  }
  process_ = -1;
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return "was ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
  }
  const int code = WEXITSTATUS(status);
  return code == 0 ? "ended before it was done" : "ended with code " + std::to_string(code);
}

}  // namespace kelto::host
