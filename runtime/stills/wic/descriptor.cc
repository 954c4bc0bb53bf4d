// Files through the Windows C library.
#include "runtime/stills/descriptor.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>

namespace kelto::stills {
namespace {

using Status = struct _stat64;

bool IsKind(const Status& status, unsigned kind) { return (status.st_mode & S_IFMT) == kind; }

}  // namespace

Descriptor OpenRegularFile(const std::string& path) {
  Status status = {};
  // Folders cannot even be opened.
  if (_stat64(path.c_str(), &status) == 0 && IsKind(status, S_IFDIR)) {
    throw StillError(fnfErr, "a folder, not a picture");
  }
  const int number = _open(path.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
  if (number < 0) throw OpenFailure(errno);
  if (_fstat64(number, &status) != 0 || !IsKind(status, S_IFREG)) {
    _close(number);
    throw StillError(fnfErr, "not a file");
  }
  return {number, static_cast<uint64_t>(status.st_size)};
}

void CloseDescriptor(int number) { _close(number); }

std::FILE* NewStream(int number) {
  const int duplicate = _dup(number);
  if (duplicate < 0) return nullptr;
  std::FILE* const stream = _fdopen(duplicate, "rb");
  if (stream == nullptr) {
    const int error = errno;
    _close(duplicate);
    errno = error;
  }
  return stream;
}

bool SeekStream(std::FILE* stream, uint64_t position) {
  return _fseeki64(stream, static_cast<int64_t>(position), SEEK_SET) == 0;
}

uint64_t StreamPosition(std::FILE* stream) { return static_cast<uint64_t>(_ftelli64(stream)); }

}  // namespace kelto::stills
