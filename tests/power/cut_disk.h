// A file system of which a power cut leaves only what was synchronised, fed from a log of calls.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/power/write_log.h"

namespace kelto::test {

struct LoggedStep : LogEntry {
  std::string name, data;
};

/// The steps of a log, in their order.
std::vector<LoggedStep> ReadWriteLog(const std::string& path);

/// The content of a file. What was written since it was last synchronised may be lost.
struct DiskFile {
  std::string now;     ///< what programs read
  std::string synced;  ///< what is there after a power cut at the least
  bool Safe() const { return now == synced; }
};

/// Replays steps. A folder's entries may each be, after a power cut, what they were when the folder
/// was last synchronised, or anything that they have been since.
class CutDisk {
 public:
  /// A file that was there before the steps, on the disk; none when `content` is null.
  void Put(uint64_t folder, const std::string& name, const std::string* content);
  void Replay(const LoggedStep& step);

  /// What may have the name after a power cut now; a null pointer for nothing.
  using Outcomes = std::set<std::shared_ptr<const DiskFile>>;
  Outcomes After(uint64_t folder, const std::string& name) const;

 private:
  using File = std::shared_ptr<DiskFile>;
  struct Entry {
    File now;
    std::set<File> possible;
  };
  Entry& At(uint64_t folder, const std::string& name);
  void Change(uint64_t folder, const std::string& name, const File& file);

  std::map<std::pair<uint64_t, std::string>, Entry> entries_;
  std::map<uint64_t, File> inodes_;
};

}  // namespace kelto::test
