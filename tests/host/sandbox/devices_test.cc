// Devices that a sandbox leaves open, as encoders in hardware need them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "host/sandbox/file_rules.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {
namespace {

// The sandbox keeps the sanitizer from its list of leaks that are others'.
[[maybe_unused]] const int kDevicesWithoutLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

/// Whether a process can open a device to read and write it, once it is in the sandbox.
bool OpensIn(const SandboxAccess& access, const char* device) {
  const pid_t process = fork();
  if (process == 0) {
    EnterSandbox(access);
    _exit(open(device, O_RDWR | O_CLOEXEC) >= 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(Devices, AreOpenToThoseWhoNeedThem) {
  if (LandlockVersion() == 0) GTEST_SKIP() << "this kernel has no Landlock";
  EXPECT_FALSE(OpensIn({}, "/dev/full"));
  EXPECT_TRUE(OpensIn({{}, {}, {"/dev/full", "/dev/of-no-machine"}}, "/dev/full"));
  EXPECT_FALSE(OpensIn({{}, {}, {"/dev/full"}}, "/dev/random"));
}

}  // namespace
}  // namespace kelto::host
