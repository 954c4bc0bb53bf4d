#include "runtime/stills/still_file.h"

#include <cerrno>

#include "runtime/stills/descriptor.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {

StillError OpenFailure(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EINVAL:  // of letters that no name may have here
      return {fnfErr, "no such file"};
    case EACCES:
    case EPERM:
      return {fnfErr, "no permission to read the file"};
    default:
      return {fnfErr, "the file cannot be opened (error " + std::to_string(error) + ")"};
  }
}

StillFile::StillFile(const std::string& path) {
  const Descriptor opened = OpenRegularFile(path);
  fd_ = opened.number;
  size_ = opened.size;
  try {
    Rewind();
  } catch (...) {
    CloseDescriptor(fd_);
    throw;
  }
}

StillFile::~StillFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  CloseDescriptor(fd_);
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
  if (SeekStream(stream_, position)) return true;
  read_failed_ |= errno != EINVAL;  // which is the fault of what the file says
  return false;
}

uint64_t StillFile::Position() { return StreamPosition(stream_); }

void StillFile::Rewind() {
  // A new stream, as the old one's buffer may hold what another program has replaced since.
  if (stream_ != nullptr) std::fclose(stream_);
  stream_ = NewStream(fd_);
  if (stream_ == nullptr) throw OpenFailure(errno);
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
