// A file that is to be the same for all who read it, however often and from however many processes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kelto::host {

/// Which file a name leads to, and its content as far as the file system knows: it changes with
/// every write.
struct FileState {
  uint64_t device = 0, inode = 0;  ///< what Windows calls volume serial number and file index
  int64_t bytes = 0;
  int64_t time = 0;  ///< of the last change, in units of the system's own
  bool operator==(const FileState&) const = default;
};

/// The state of the file that `path` leads to; none when there is none.
std::optional<FileState> FileStateOf(const std::string& path);

/// Keeps a file open, so that one which is put in its place under the same name is not read
/// instead.
class HeldFile {
 public:
  /// A file that cannot be opened is left to those who try to read it.
  explicit HeldFile(const std::string& path);
  ~HeldFile();
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

  /// A path of the open file; the one given, where the system has no other or the file is not open.
  std::string Path() const;
  /// The state of the file now; none when it is not there.
  std::optional<FileState> State() const;

 private:
  std::string path_;
  int file_ = -1;
};

}  // namespace kelto::host
