#include "host/files/held_file.h"

#if defined(_WIN32)
#include <windows.h>

#include "host/files/path_text.h"
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace kelto::host {

#if defined(_WIN32)

std::optional<FileState> FileStateOf(const std::string& path) {
  // Attributes are asked for alone, so that others may write, replace and remove it meanwhile.
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileW(ForCalls(PathOf(path)).c_str(), FILE_READ_ATTRIBUTES, kShareAll,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION about{};
  const bool known = GetFileInformationByHandle(file, &about) != 0;
  CloseHandle(file);
  if (!known) return std::nullopt;
  const auto joined = [](DWORD high, DWORD low) { return uint64_t{high} << 32 | low; };
  return FileState{about.dwVolumeSerialNumber, joined(about.nFileIndexHigh, about.nFileIndexLow),
                   static_cast<int64_t>(joined(about.nFileSizeHigh, about.nFileSizeLow)),
                   static_cast<int64_t>(joined(about.ftLastWriteTime.dwHighDateTime,
                                               about.ftLastWriteTime.dwLowDateTime))};
}

HeldFile::HeldFile(const std::string& path) : path_(path) {}
HeldFile::~HeldFile() = default;
std::string HeldFile::Path() const { return path_; }
std::optional<FileState> HeldFile::State() const { return FileStateOf(path_); }

#else

namespace {

FileState StateOf(const struct stat& status) {
  constexpr int64_t kNanoseconds = 1000000000;
  return {status.st_dev, status.st_ino, status.st_size,
          status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec};
}

}  // namespace

std::optional<FileState> FileStateOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return StateOf(status);
}

// Not blocking, since opening a pipe would otherwise wait for its writer.
HeldFile::HeldFile(const std::string& path)
    : path_(path), file_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}

HeldFile::~HeldFile() {
  if (file_ >= 0) close(file_);
}

std::string HeldFile::Path() const {
  if (file_ < 0) return path_;
  std::string held = "/proc/self/fd/" + std::to_string(file_);
  return access(held.c_str(), R_OK) == 0 ? held : path_;
}

std::optional<FileState> HeldFile::State() const {
  // By the name, where the file is read by its name.
  if (Path() == path_) return FileStateOf(path_);
  struct stat status {};
  if (fstat(file_, &status) != 0) return std::nullopt;
  return StateOf(status);
}

#endif

}  // namespace kelto::host
