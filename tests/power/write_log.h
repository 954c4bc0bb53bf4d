// The log that write_log.cc keeps of a program's calls: one entry after the other, each followed by
// its name and its data.
#pragma once

#include <cstdint>

namespace kelto::test {

/// Where the log goes.
inline constexpr const char* kWriteLogVariable = "KELTO_TEST_WRITE_LOG";

enum class LoggedCall : uint32_t {
  kCreate,  ///< a new file `inode` got `name` in `folder`
  kWrite,   ///< `data` went into `inode` at `offset`
  kSync,    ///< fsync of `inode`, a file or a folder
  kRename,  ///< `name` in `folder` became `data` there, in place of what had that name
  kRemove,  ///< `name` went from `folder`
};

struct LogEntry {
  LoggedCall call = LoggedCall::kSync;
  uint32_t nameBytes = 0;
  uint64_t folder = 0, inode = 0, offset = 0, dataBytes = 0;
};

}  // namespace kelto::test
