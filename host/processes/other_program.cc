#include "host/processes/other_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/base/error.h"
#include "host/terminal/interrupt.h"

extern char** environ;

namespace kelto::host {
namespace {

constexpr size_t kMostOutput = size_t{1} << 20;

/// Reads until the other end is closed.
std::string AllFrom(int pipe) {
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t count = read(pipe, block, sizeof block);
    if (count < 0 && errno == EINTR && InterruptSignal() == 0) continue;
    if (count <= 0) return text;
    if (text.size() < kMostOutput) text.append(block, static_cast<size_t>(count));
  }
}

}  // namespace

std::optional<std::string> OutputOfProgram(const std::vector<std::string>& words) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw Error("cannot start a process: " + std::generic_category().message(errno));
  }
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t process = -1;
  const int fault =
      posix_spawnp(&process, arguments[0], &files, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  close(ends[1]);
  if (fault != 0) {
    close(ends[0]);
    if (fault == ENOENT) return std::nullopt;
    throw Error(words[0] + ": cannot be started: " + std::generic_category().message(fault));
  }
  std::string text = AllFrom(ends[0]);
  close(ends[0]);
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  CheckInterrupt();
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw Error(words[0] + ": has failed");
  return text;
}

}  // namespace kelto::host
