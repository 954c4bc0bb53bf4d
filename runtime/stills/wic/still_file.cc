// The file of a picture through the Windows C library.
#include "runtime/stills/still_file.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <new>

#include "runtime/stills/limits.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

using Status = struct _stat64;

bool IsKind(const Status& status, unsigned kind) { return (status.st_mode & S_IFMT) == kind; }

std::string OpenFailure(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "no such file";
    case EACCES:
    case EPERM:
      return "no permission to read the file";
    default:
      return "the file cannot be opened (error " + std::to_string(error) + ")";
  }
}

}  // namespace

StillFile::StillFile(const std::string& path) {
  Status status = {};
  // Folders cannot even be opened.
  if (_stat64(path.c_str(), &status) == 0 && IsKind(status, S_IFDIR)) {
    throw StillError(fnfErr, "a folder, not a picture");
  }
  fd_ = _open(path.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
  if (fd_ < 0) throw StillError(fnfErr, OpenFailure(errno));
  try {
    if (_fstat64(fd_, &status) != 0 || !IsKind(status, S_IFREG)) {
      throw StillError(fnfErr, "not a file");
    }
    size_ = static_cast<uint64_t>(status.st_size);
    Rewind();
  } catch (...) {
    _close(fd_);
    throw;
  }
}

StillFile::~StillFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  _close(fd_);
}

size_t StillFile::Read(void* to, size_t count) {
  const size_t got = std::fread(to, 1, count, stream_);
  if (got < count) {
    hit_end_ = true;
    read_failed_ |= std::feof(stream_) == 0;
  }
  return got;
}

bool StillFile::Seek(uint64_t position) {
  if (_fseeki64(stream_, static_cast<int64_t>(position), SEEK_SET) == 0) return true;
  read_failed_ |= errno != EINVAL;  // which is the fault of what the file says
  return false;
}

uint64_t StillFile::Position() { return static_cast<uint64_t>(_ftelli64(stream_)); }

void StillFile::Rewind() {
  // A new stream, as the old one's buffer may hold what another program has replaced since.
  if (stream_ != nullptr) std::fclose(stream_);
  const int duplicate = _dup(fd_);
  stream_ = duplicate < 0 ? nullptr : _fdopen(duplicate, "rb");
  if (stream_ == nullptr) {
    const int error = errno;
    if (duplicate >= 0) _close(duplicate);
    throw StillError(fnfErr, OpenFailure(error));
  }
  std::rewind(stream_);
  hit_end_ = false;
}

std::vector<uint8_t> StillFile::ReadAll() {
  if (size_ > kMaxWholeFileBytes) {
    throw StillError(codecBadDataErr, "a file of " + std::to_string(size_ >> 20) +
                                          " MiB; the limit for its form is " +
                                          std::to_string(kMaxWholeFileBytes >> 20) + " MiB");
  }
  Rewind();
  std::vector<uint8_t> bytes(static_cast<size_t>(size_));
  bytes.resize(Read(bytes.data(), bytes.size()));
  return bytes;
}

}  // namespace kelto::stills
