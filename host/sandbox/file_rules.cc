#include "host/sandbox/file_rules.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// The kernel's record as of version 6; headers of Debian 12 end with the first field.
struct Ruleset {
  uint64_t files, ports, scopes;
};
constexpr uint64_t kTruncate = 1 << 14;         // from version 3 on
constexpr uint64_t kDeviceControls = 1 << 15;   // from version 5 on
constexpr uint64_t kTcpBindAndConnect = 1 | 2;  // from version 4 on
constexpr uint64_t kSocketsAndSignals = 1 | 2;  // from version 6 on

constexpr uint64_t kReadFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr uint64_t kReadFolder = kReadFile | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr uint64_t kWriteFolder = kReadFolder | LANDLOCK_ACCESS_FS_WRITE_FILE |
                                  LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_REG |
                                  LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                  kTruncate;

/// All that a version knows, since what is not named is not kept from anybody.
Ruleset AllOf(int version) {
  // Version 1 counts 13 kinds of access to files; 2 adds moving between folders.
  Ruleset all{(LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1, 0, 0};
  if (version >= 2) all.files |= LANDLOCK_ACCESS_FS_REFER;
  if (version >= 3) all.files |= kTruncate;
  if (version >= 4) all.ports = kTcpBindAndConnect;
  if (version >= 5) all.files |= kDeviceControls;
  if (version >= 6) all.scopes = kSocketsAndSignals;
  return all;
}

class Rules {
 public:
  explicit Rules(const Ruleset& handled)
      : handled_(handled),
        // Fields that are zero may be longer than the kernel's record.
        set_(
            static_cast<int>(syscall(SYS_landlock_create_ruleset, &handled_, sizeof handled_, 0))) {
    if (set_ < 0) error_ = errno;
  }
  ~Rules() {
    if (set_ >= 0) close(set_);
  }
  Rules(const Rules&) = delete;
  Rules& operator=(const Rules&) = delete;

  void Allow(const std::string& path, uint64_t access) {
    if (error_ != 0) return;
    const int place = open(path.c_str(), O_PATH | O_CLOEXEC);
    if (place < 0) return;  // what is not there needs no rule; its user says so
    struct stat kind {};
    fstat(place, &kind);
    if (!S_ISDIR(kind.st_mode)) {
      access &= kReadFile | LANDLOCK_ACCESS_FS_WRITE_FILE | kTruncate | kDeviceControls;
    }
    landlock_path_beneath_attr rule{};
    rule.allowed_access = access & handled_.files;
    rule.parent_fd = place;
    if (syscall(SYS_landlock_add_rule, set_, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0) {
      error_ = errno;
    }
    close(place);
  }

  int Enforce() {
    if (error_ != 0) return error_;
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return errno;
    return syscall(SYS_landlock_restrict_self, set_, 0) == 0 ? 0 : errno;
  }

 private:
  Ruleset handled_;
  int set_;
  int error_ = 0;
};

/// The folder that writing `path` needs: itself, or the nearest above that exists.
std::string FolderOf(const std::string& path) {
  std::error_code error;
  fs::path folder = fs::absolute(path, error);
  while (!fs::is_directory(folder, error) && folder.has_relative_path()) {
    folder = folder.parent_path();
  }
  return folder.string();
}

}  // namespace

int LandlockVersion() {
  const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, 1);
  return version > 0 ? static_cast<int>(version) : 0;
}

int RestrictFiles(const SandboxAccess& access, const std::vector<std::string>& always) {
  Rules rules(AllOf(LandlockVersion()));
  for (const std::string& path : always) rules.Allow(path, kReadFolder);
  for (const std::string& path : access.reads) rules.Allow(path, kReadFolder);
  for (const std::string& path : access.writes) rules.Allow(FolderOf(path), kWriteFolder);
  for (const std::string& path : access.devices) {
    rules.Allow(path, kReadFolder | LANDLOCK_ACCESS_FS_WRITE_FILE | kDeviceControls);
  }
  rules.Allow("/dev/null", kReadFile | LANDLOCK_ACCESS_FS_WRITE_FILE);
  return rules.Enforce();
}

}  // namespace kelto::host
