// Inputs of fuzz targets as files.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/byte_source.h"

namespace kelto::fuzz {

/// A file that lives in memory, with a path by which it is opened.
class MemoryFile {
 public:
  MemoryFile(const uint8_t* data, size_t size) : fd_(::memfd_create("input", MFD_CLOEXEC)) {
    Require(fd_ >= 0, "there is a file to write to");
    while (size > 0) {
      const ssize_t written = ::write(fd_, data, size);
      Require(written > 0, "the file takes the input");
      data += written;
      size -= static_cast<size_t>(written);
    }
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(fd_); }
  std::string path() const { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  int fd_;
};

}  // namespace kelto::fuzz
