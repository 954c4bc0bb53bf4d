// The sandbox tried out.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <system_error>

#include "host/sandbox/call_rules.h"
#include "host/sandbox/file_rules.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {
namespace {

/// What a process that tried ends with: kTried, and a bit for each thing that it could do.
constexpr int kTried = 64, kOpened = 1, kConnects = 2;

[[noreturn]] void TryAll() {
  try {
    EnterSandbox({});
  } catch (const std::exception&) {
    _exit(kTried | kOpened | kConnects);
  }
  int could = 0;
  if (open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC) >= 0) could |= kOpened;
  if (socket(AF_INET, SOCK_STREAM, 0) >= 0) could |= kConnects;
  // A program that does start ends without saying that it has tried.
  execl("/bin/true", "true", nullptr);
  _exit(kTried | could);
}

}  // namespace

std::vector<SandboxCheck> TrySandbox() {
  std::string fault;
  int status = 0;
  const pid_t trial = fork();
  if (trial == 0) TryAll();
  if (trial < 0) fault = "no process can be started: " + std::generic_category().message(errno);
  while (trial > 0 && waitpid(trial, &status, 0) < 0 && errno == EINTR) {
  }
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
  const bool tried = (code & kTried) != 0;
  const std::string noFilter =
      FiltersCalls() ? "the kernel's filter does not hold" : "this kernel has no seccomp filters";
  const auto check = [&](const std::string& name, bool holds, const std::string& otherwise) {
    return SandboxCheck{name, !fault.empty() ? fault : holds ? "" : otherwise};
  };
  const int version = LandlockVersion();
  return {
      check("other files", tried && (code & kOpened) == 0,
            version > 0 ? "the kernel's Landlock does not hold" : "this kernel has no Landlock"),
      check("the network", tried && (code & kConnects) == 0, noFilter),
      check("starting programs", tried, noFilter)};
}

}  // namespace kelto::host
