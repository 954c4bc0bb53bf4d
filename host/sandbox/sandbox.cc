#include "host/sandbox/sandbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include "host/base/error.h"
#include "host/sandbox/call_rules.h"
#include "host/sandbox/file_rules.h"

namespace kelto::host {
namespace {

SandboxUse use = SandboxUse::kAvailable;
bool entered = false;

/// What the codecs' and the system's libraries read: themselves and each other, their data, fonts,
/// and what the machine is.
std::vector<std::string> SystemFiles() {
  std::vector<std::string> files{"/usr",
                                 "/lib",
                                 "/lib32",
                                 "/lib64",
                                 "/etc/ld.so.cache",
                                 "/etc/fonts",
                                 "/var/cache/fontconfig",
                                 "/etc/localtime",
                                 "/dev/zero",
                                 "/dev/urandom",
                                 "/proc/cpuinfo",
                                 "/proc/meminfo",
                                 "/proc/stat",
                                 "/sys/devices/system"};
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  files.emplace_back("/proc");  // where the sanitizers look at the process
#endif
  // Libraries that are installed elsewhere.
  if (const char* folders = std::getenv("LD_LIBRARY_PATH"); folders != nullptr) {
    std::istringstream list(folders);
    for (std::string folder; std::getline(list, folder, ':');) {
      if (!folder.empty()) files.push_back(folder);
    }
  }
  return files;
}

std::string ReasonOf(int error) { return std::generic_category().message(error); }

[[noreturn]] void Lack(const std::string& what) {
  throw Error("--sandbox: " + what + "; leave --sandbox out to go without");
}

}  // namespace

void SetSandboxUse(SandboxUse wanted) { use = wanted; }
SandboxUse CurrentSandboxUse() { return use; }

void EnterSandbox(const SandboxAccess& access) {
  if (use == SandboxUse::kNone) return;
  const bool files = LandlockVersion() > 0, calls = FiltersCalls();
  if (use == SandboxUse::kRequired) {
    if (!files) Lack("this kernel has no Landlock, which keeps decoders from other files");
    if (!calls) Lack("this kernel has no seccomp filters, which keep decoders from programs");
  }
  const auto check = [](const char* doing, int error) {
    if (error == 0) return;
    throw Error(std::string("cannot ") + doing + ": " + ReasonOf(error) +
                "; --no-sandbox goes without");
  };
  entered = true;
  if (files) check("keep decoders from other files", RestrictFiles(access, SystemFiles()));
  if (calls) check("keep decoders from programs", RestrictCalls());
}

void CheckNotReplaced(const std::string& file) {
  // Not blocking, since opening a pipe would otherwise wait for its writer.
  const int opened = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (opened >= 0) {
    close(opened);
    return;
  }
  // Landlock, which refuses to open files, does not refuse to say what their permissions are.
  if (errno != EACCES || !entered || access(file.c_str(), R_OK) != 0) return;
  throw Error(file + ": was replaced while the command was using it; give the command again");
}

}  // namespace kelto::host
