#include "host/sandbox/sandbox.h"

#include <cstdlib>
#include <sstream>
#include <system_error>

#include "host/base/error.h"
#include "host/sandbox/call_rules.h"
#include "host/sandbox/file_rules.h"

namespace kelto::host {
namespace {

SandboxUse use = SandboxUse::kAvailable;

/// What the codecs' and the system's libraries read: themselves and each other, their data, fonts,
/// and what the machine is.
std::vector<std::string> SystemFiles() {
  std::vector<std::string> files{"/usr",
                                 "/lib",
                                 "/lib32",
                                 "/lib64",
                                 "/etc/ld.so.cache",
                                 "/etc/fonts",
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
  if (files) check("keep decoders from other files", RestrictFiles(access, SystemFiles()));
  if (calls) check("keep decoders from programs", RestrictCalls());
}

}  // namespace kelto::host
