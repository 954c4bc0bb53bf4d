// Children of a test. A call that fails throws, so that it cannot pass for a child that did well.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

namespace kelto::test {

[[noreturn]] inline void ThrowErrno(const char* call) {
  throw std::system_error(errno, std::generic_category(), call);
}

/// The reading and the writing end.
inline std::array<int, 2> MakePipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) ThrowErrno("pipe");
  return ends;
}

inline pid_t Fork() {
  const pid_t process = fork();
  if (process < 0) ThrowErrno("fork");
  return process;
}

/// waitpid(), which interruptions do not end.
inline pid_t WaitFor(pid_t child, int* status, int options = 0) {
  for (;;) {
    const pid_t ended = waitpid(child, status, options);
    if (ended >= 0) return ended;
    if (errno != EINTR) ThrowErrno("waitpid");
  }
}

/// The same, with what the child and those that it waited for have used.
inline rusage UsageOf(pid_t child, int* status) {
  rusage usage{};
  while (wait4(child, status, 0, &usage) < 0) {
    if (errno != EINTR) ThrowErrno("wait4");
  }
  return usage;
}

/// For one process only: the system takes 0 and -1 for whole groups, root's -1 for everything.
inline void Signal(pid_t process, int signal) {
  if (process <= 0) throw std::invalid_argument("no process to send a signal to");
  if (kill(process, signal) != 0) ThrowErrno("kill");
}

}  // namespace kelto::test
