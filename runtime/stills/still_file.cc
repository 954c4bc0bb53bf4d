#include "runtime/stills/still_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "runtime/stills/limits.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

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
  // Not blocking, since opening a pipe would otherwise wait for its writer.
  fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd_ < 0) throw StillError(fnfErr, OpenFailure(errno));
  try {
    struct stat status = {};
    if (::fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode)) {
      throw StillError(fnfErr, S_ISDIR(status.st_mode) ? "a folder, not a picture" : "not a file");
    }
    size_ = static_cast<uint64_t>(status.st_size);
    Rewind();
  } catch (...) {
    ::close(fd_);
    throw;
  }
}

StillFile::~StillFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  ::close(fd_);
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
  if (::fseeko(stream_, static_cast<off_t>(position), SEEK_SET) == 0) return true;
  read_failed_ |= errno != EINVAL;  // which is the fault of what the file says
  return false;
}

uint64_t StillFile::Position() { return static_cast<uint64_t>(::ftello(stream_)); }

void StillFile::Rewind() {
  // A new stream, as the old one's buffer may hold what another program has replaced since.
  if (stream_ != nullptr) std::fclose(stream_);
  const int duplicate = ::fcntl(fd_, F_DUPFD_CLOEXEC, 0);
  stream_ = duplicate < 0 ? nullptr : ::fdopen(duplicate, "rb");
  if (stream_ == nullptr) {
    const int error = errno;
    if (duplicate >= 0) ::close(duplicate);
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
  std::vector<uint8_t> bytes(size_);
  bytes.resize(Read(bytes.data(), bytes.size()));
  return bytes;
}

}  // namespace kelto::stills
