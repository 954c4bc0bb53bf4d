// The file of a picture, open for reading for as long as its importer lives.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace kelto::stills {

/// A regular file behind a stream. It is never mapped: another program may cut it short while it
/// is read, which has to be a short read and not a bus error.
class StillFile {
 public:
  /// Throws StillError: fnfErr for what is not there, not readable or not a regular file.
  explicit StillFile(const std::string& path);
  ~StillFile();
  StillFile(const StillFile&) = delete;
  StillFile& operator=(const StillFile&) = delete;

  std::FILE* stream() { return stream_; }
  /// Bytes when the file was opened.
  uint64_t size() const { return size_; }

  /// Bytes read into `to`; fewer than `count` only at the end or after a read error.
  size_t Read(void* to, size_t count);
  bool Seek(uint64_t position);
  uint64_t Position();
  /// Back to the first byte of the file as it is now: nothing read earlier is kept, and `hit_end`
  /// is forgotten.
  void Rewind();
  /// Whether a Read since the last Rewind met the end of the file: which distinguishes truncated
  /// files from otherwise damaged ones.
  bool hit_end() const { return hit_end_; }
  /// Whether any Read or Seek failed for another reason than the file's end or content: the disk or
  /// the network did, and what was read cannot be trusted.
  bool read_failed() const { return read_failed_; }
  /// The whole file. Throws StillError above kMaxWholeFileBytes.
  std::vector<uint8_t> ReadAll();

 private:
  int fd_ = -1;
  std::FILE* stream_ = nullptr;
  uint64_t size_ = 0;
  bool hit_end_ = false;
  bool read_failed_ = false;
};

}  // namespace kelto::stills
