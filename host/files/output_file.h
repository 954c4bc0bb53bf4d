// A file that appears under its name only when it is whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/base/error.h"

namespace kelto::host {

/// The name that stands for the standard output.
inline constexpr const char* kStandardOutput = "-";

/// Whether two names are one file's, there or yet to be made.
bool IsSameFile(const std::string& a, const std::string& b);

/// What to throw when a name is given for two files of a command.
UsageError NameUsedTwice(const std::string& name);

/// Throws NameUsedTwice when `output` is one of `others`; empty names are none's.
void CheckNameIsFree(const std::string& output, const std::vector<std::string>& others);

/// Writes beside the file asked for, under a temporary name, and renames at the end; or writes
/// straight to the standard output. Errors are thrown as Error and name the file.
class OutputFile {
 public:
  /// Opens for `name`, a path or kStandardOutput. A symbolic link is followed, so that it goes on
  /// pointing where it did. Folders and special files are refused.
  explicit OutputFile(const std::string& name);
  /// Removes what was not finished.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(const void* bytes, size_t size);
  bool CanSeek() const { return !pipe_; }
  /// Moves to `position` from the start; only when CanSeek().
  void Seek(int64_t position);
  int64_t Size() const { return size_; }
  /// Where the bytes are until Finish; empty for the standard output. They are there as soon as
  /// Write returns.
  const std::filesystem::path& WorkPath() const { return workPath_; }
  /// Closes, and renames over whatever had the name before.
  void Finish();

 private:
  void WriteToPipe(const void* bytes, size_t size);
  [[noreturn]] void Fail(const char* doing, int error) const;

  std::string name_;
  bool pipe_;
  std::filesystem::path finalPath_, workPath_;
  std::FILE* file_ = nullptr;
  int64_t position_ = 0;
  int64_t size_ = 0;
};

}  // namespace kelto::host
