// A file that appears under its name only when it is whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/files/work_file.h"

namespace kelto::host {

/// The name that stands for the standard output.
inline constexpr const char* kStandardOutput = "-";

/// Whether two names are one file's, there or yet to be made.
bool IsSameFile(const std::string& a, const std::string& b);

/// What to throw when a name is given for two files of a command.
UsageError NameUsedTwice(const std::string& name);

/// Throws NameUsedTwice when `output` is one of `others`; empty names are none's.
void CheckNameIsFree(const std::string& output, const std::vector<std::string>& others);

/// Throws UsageError where there is a file `name`, to which something was added by hand perhaps, so
/// that it is replaced with --force alone. A folder is left to what would write there.
void CheckIsNew(const std::string& name);

/// A WorkFile, or the standard output, to which bytes go at once. Errors are thrown as Error and
/// name the file.
class OutputFile {
 public:
  /// Opens for `name`, a path or kStandardOutput. See WorkFile.
  explicit OutputFile(const std::string& name, FolderLink link = FolderLink::kFollowed);

  void Write(const void* bytes, size_t size);
  bool CanSeek() const { return work_ != nullptr; }
  /// Moves to `position` from the start; only when CanSeek().
  void Seek(int64_t position);
  int64_t Size() const { return size_; }
  /// Where the bytes are until Finish; empty for the standard output. They are there as soon as
  /// Write returns.
  std::filesystem::path WorkPath() const;
  /// Gives a file its name; on the standard output, everything has been handed over then.
  void Finish(FolderSync sync = FolderSync::kNow);

 private:
  std::unique_ptr<WorkFile> work_;  ///< null for the standard output
  int64_t position_ = 0;
  int64_t size_ = 0;
};

}  // namespace kelto::host
