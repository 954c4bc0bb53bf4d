#include "runtime/stills/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kelto::stills {

Descriptor OpenRegularFile(const std::string& path) {
  // Not blocking, since opening a pipe would otherwise wait for its writer.
  const int number = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (number < 0) throw OpenFailure(errno);
  struct stat status = {};
  if (::fstat(number, &status) != 0 || !S_ISREG(status.st_mode)) {
    ::close(number);
    throw StillError(fnfErr, S_ISDIR(status.st_mode) ? "a folder, not a picture" : "not a file");
  }
  return {number, static_cast<uint64_t>(status.st_size)};
}

void CloseDescriptor(int number) { ::close(number); }

std::FILE* NewStream(int number) {
  const int duplicate = ::fcntl(number, F_DUPFD_CLOEXEC, 0);
  if (duplicate < 0) return nullptr;
  std::FILE* const stream = ::fdopen(duplicate, "rb");
  if (stream == nullptr) {
    const int error = errno;
    ::close(duplicate);
    errno = error;
  }
  return stream;
}

bool SeekStream(std::FILE* stream, uint64_t position) {
  return ::fseeko(stream, static_cast<off_t>(position), SEEK_SET) == 0;
}

uint64_t StreamPosition(std::FILE* stream) { return static_cast<uint64_t>(::ftello(stream)); }

}  // namespace kelto::stills
