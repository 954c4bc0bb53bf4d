// Loaded into a program before all other libraries: logs what it asks of the file system, so that a
// test can tell what a power cut at any moment would have left.
#include "tests/power/write_log.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <string>

namespace {

using kelto::test::LogEntry;
using kelto::test::LoggedCall;

/// Past the program's own calls, of which this library has some.
int OpenLog() {
  const char* path = std::getenv(kelto::test::kWriteLogVariable);
  if (path == nullptr) return -1;
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_APPEND | O_CLOEXEC));
}

void Log(LogEntry entry, const std::string& name, const void* data, size_t size) {
  const int error = errno;
  const int log = OpenLog();
  if (log >= 0) {
    entry.nameBytes = static_cast<uint32_t>(name.size());
    entry.dataBytes = size;
    iovec parts[] = {{&entry, sizeof entry},
                     {const_cast<char*>(name.data()), name.size()},
                     {const_cast<void*>(data), size}};
    // In one call: several processes write to the log.
    if (syscall(SYS_writev, log, parts, 3) < 0) abort();
    close(log);
  }
  errno = error;
}

uint64_t InodeOf(int folder, const char* path, int flags = 0) {
  struct stat status {};
  return fstatat(folder, path, &status, flags) == 0 ? status.st_ino : 0;
}

struct Place {
  uint64_t folder;
  std::string name;
};

Place PlaceOf(int folder, const char* path) {
  const std::string whole = path;
  const size_t slash = whole.rfind('/');
  if (slash == whole.npos) return {InodeOf(folder, "."), whole};
  return {InodeOf(folder, whole.substr(0, slash + 1).c_str()), whole.substr(slash + 1)};
}

int Opened(int file, int folder, const char* path, int flags) {
  if (file >= 0 && (flags & O_CREAT) != 0) {
    const Place place = PlaceOf(folder, path);
    struct stat status {};
    // A file that was there already keeps what it has, and has its size.
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0) {
      Log({LoggedCall::kCreate, 0, place.folder, status.st_ino}, place.name, nullptr, 0);
    }
  }
  return file;
}

int Renamed(int result, int folder, const char* from, int toFolder, const char* to) {
  const Place place = PlaceOf(folder, from), end = PlaceOf(toFolder, to);
  if (result == 0) {
    if (place.folder != end.folder) abort();  // the log has no words for that
    Log({LoggedCall::kRename, 0, place.folder, 0}, place.name, end.name.data(), end.name.size());
  }
  return result;
}

int Removed(int result, int folder, const char* path) {
  const Place place = PlaceOf(folder, path);
  if (result == 0) Log({LoggedCall::kRemove, 0, place.folder}, place.name, nullptr, 0);
  return result;
}

int Synced(int result, int file) {
  if (result == 0) {
    Log({LoggedCall::kSync, 0, 0, InodeOf(file, "", AT_EMPTY_PATH)}, "", nullptr, 0);
  }
  return result;
}

ssize_t Written(ssize_t count, int file, const void* bytes, off_t offset) {
  struct stat status {};
  if (count > 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
    Log({LoggedCall::kWrite, 0, 0, status.st_ino, static_cast<uint64_t>(offset)}, "", bytes,
        static_cast<size_t>(count));
  }
  return count;
}

unsigned ModeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
}

}  // namespace

extern "C" {

#define KELTO_OPEN(name)                                                \
  int name(const char* path, int flags, ...) {                          \
    va_list arguments;                                                  \
    va_start(arguments, flags);                                         \
    const unsigned mode = ModeOf(flags, arguments);                     \
    va_end(arguments);                                                  \
    const long file = syscall(SYS_openat, AT_FDCWD, path, flags, mode); \
    return Opened(static_cast<int>(file), AT_FDCWD, path, flags);       \
  }
#define KELTO_OPENAT(name)                                            \
  int name(int folder, const char* path, int flags, ...) {            \
    va_list arguments;                                                \
    va_start(arguments, flags);                                       \
    const unsigned mode = ModeOf(flags, arguments);                   \
    va_end(arguments);                                                \
    const long file = syscall(SYS_openat, folder, path, flags, mode); \
    return Opened(static_cast<int>(file), folder, path, flags);       \
  }
KELTO_OPEN(open)
KELTO_OPEN(open64)
KELTO_OPENAT(openat)
KELTO_OPENAT(openat64)

ssize_t write(int file, const void* bytes, size_t size) {
  const off_t offset = lseek(file, 0, SEEK_CUR);
  return Written(syscall(SYS_write, file, bytes, size), file, bytes, offset);
}

int fsync(int file) { return Synced(static_cast<int>(syscall(SYS_fsync, file)), file); }
int fdatasync(int file) { return Synced(static_cast<int>(syscall(SYS_fdatasync, file)), file); }

int rename(const char* from, const char* to) {
  const long result = syscall(SYS_rename, from, to);
  return Renamed(static_cast<int>(result), AT_FDCWD, from, AT_FDCWD, to);
}
int renameat(int folder, const char* from, int toFolder, const char* to) {
  const long result = syscall(SYS_renameat, folder, from, toFolder, to);
  return Renamed(static_cast<int>(result), folder, from, toFolder, to);
}

int unlink(const char* path) {
  return Removed(static_cast<int>(syscall(SYS_unlink, path)), AT_FDCWD, path);
}
int unlinkat(int folder, const char* path, int flags) {
  return Removed(static_cast<int>(syscall(SYS_unlinkat, folder, path, flags)), folder, path);
}

int mkdir(const char* path, mode_t mode) {
  const int result = static_cast<int>(syscall(SYS_mkdir, path, mode));
  if (result == 0) {
    const Place place = PlaceOf(AT_FDCWD, path);
    Log({LoggedCall::kCreate, 0, place.folder, InodeOf(AT_FDCWD, path)}, place.name, nullptr, 0);
  }
  return result;
}

}  // extern "C"
