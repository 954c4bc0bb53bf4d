#include "host/files/work_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "host/base/error.h"
#include "host/files/part_name.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
/// Another machine's part that is older than this, in seconds, has been abandoned.
constexpr time_t kLongAgo = 24 * 60 * 60;

std::string TextOf(int error) { return std::generic_category().message(error); }

fs::path FolderPathOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// A file descriptor that is closed with the object; -1 for none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Number() const { return number_; }
  void Reset(int number) {
    Close();
    number_ = number;
  }
  /// Whether the system took everything that was written.
  bool Close() { return number_ < 0 || close(std::exchange(number_, -1)) == 0; }

 private:
  int number_ = -1;
};

/// Opens a folder. One that may not be read can be written to all the same, though neither listed
/// nor synchronised. -1, with errno, where that fails.
int OpenFolder(const fs::path& path, FolderLink link) {
  const int flags = O_DIRECTORY | O_CLOEXEC | (link == FolderLink::kRefused ? O_NOFOLLOW : 0);
  const int folder = open(path.c_str(), O_RDONLY | flags);
  return folder < 0 && errno == EACCES ? open(path.c_str(), O_PATH | flags) : folder;
}

std::optional<struct stat> EntryOf(int folder, const std::string& name, int flags) {
  struct stat entry {};
  if (fstatat(folder, name.c_str(), &entry, flags) == 0) return entry;
  return std::nullopt;
}

/// fsync; true, too, for files of systems that have none.
bool Sync(int file) {
  while (fsync(file) != 0) {
    if (errno == EINTR) continue;
    return errno == EINVAL || errno == ENOTSUP || errno == EROFS || errno == EBADF;
  }
  return true;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// /dev/stdout and its like are links, which must not be replaced.
bool IsStandardStream(const struct stat& file) {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    struct stat other {};
    if (fstat(stream, &other) == 0 && IsSameFile(file, other)) return true;
  }
  return false;
}

/// Throws Error where a file must not take the place of the entry `name`.
void CheckEntry(int folder, const std::string& entryName, const std::string& name) {
  const auto entry = EntryOf(folder, entryName, AT_SYMLINK_NOFOLLOW);
  if (!entry) {
    if (errno == ENOENT) return;
    throw Error(name + ": cannot be written: " + TextOf(errno));
  }
  const auto behind = S_ISLNK(entry->st_mode) ? EntryOf(folder, entryName, 0) : entry;
  if (behind && S_ISDIR(behind->st_mode)) throw Error(name + ": is a folder; give it a file name");
  if (behind &&
      (!S_ISREG(behind->st_mode) || (S_ISLNK(entry->st_mode) && IsStandardStream(*behind)))) {
    throw Error(name + ": is not an ordinary file; write to the standard output (-) instead");
  }
  struct stat parent {};
  if (fstat(folder, &parent) != 0) return;
  const uid_t user = geteuid();
  if (user != 0 && (parent.st_mode & S_ISVTX) != 0 && entry->st_uid != user &&
      parent.st_uid != user) {
    throw Error(name +
                ": is another user's, and this folder lets only owners replace their files; "
                "choose another name");
  }
}

/// Whether the file has been locked for its writer, and is still there.
bool LockNew(int file) {
  // Where there are no locks, nobody can take it for abandoned either.
  if (flock(file, LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
  struct stat status {};
  return fstat(file, &status) != 0 || status.st_nlink > 0;
}

void RemoveIfAbandoned(int folder, const char* name) {
  const Descriptor file(openat(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0) return;
  if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || status.st_nlink != 1) return;
  if (!IsPartOfThisMachine(name) && std::time(nullptr) - status.st_mtime < kLongAgo) return;
  // Its writer holds a lock for as long as it lives.
  if (flock(file.Number(), LOCK_EX | LOCK_NB) == 0) unlinkat(folder, name, 0);
}

void RemoveAbandonedIn(int folder) {
  const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* entries = own < 0 ? nullptr : fdopendir(own);
  if (entries == nullptr) {
    if (own >= 0) close(own);
    return;
  }
  while (const dirent* entry = readdir(entries)) {
    if (IsPartName(entry->d_name)) RemoveIfAbandoned(folder, entry->d_name);
  }
  closedir(entries);
}

/// Whether the folder has not been cleared by this process or the one that it is a copy of. Once is
/// enough: films of numbered pictures, and batches, have many files in one.
bool IsFirstTimeIn(int folder) {
  static auto& cleared = *new std::set<std::pair<dev_t, ino_t>>;
  struct stat status {};
  return fstat(folder, &status) == 0 && cleared.insert({status.st_dev, status.st_ino}).second;
}

/// Gives a file the permissions and, as far as allowed, the owners of the one that it replaces.
void TakeOver(int file, const struct stat& old) {
  mode_t mode = old.st_mode & kPermissions;
  if (fchown(file, old.st_uid, old.st_gid) != 0 &&
      fchown(file, static_cast<uid_t>(-1), old.st_gid) != 0) {
    // What the old group may do, another group may not for that.
    mode = (mode & ~S_IRWXG) | (mode & (mode & S_IRWXO) << 3);
  }
  fchmod(file, mode);
}

}  // namespace

struct WorkFile::Place {
  Descriptor folder, file;
  std::string entry, part;  ///< names in the folder
  mode_t usualMode = 0;     ///< of a file that replaces none
  std::optional<UnfinishedFile> unfinished;
};

WorkFile::WorkFile(const std::string& name, FolderLink link) : name_(name) {
  const fs::path path(name);
  const fs::path parent = FolderPathOf(path);
  if (!path.has_filename()) throw Error(name_ + ": is a folder; give it a file name");
  auto place = std::make_unique<Place>();
  place->entry = path.filename().string();
  place->folder.Reset(OpenFolder(parent, link));
  const int folder = place->folder.Number();
  if (folder < 0 && errno == ENOENT) {
    throw Error(name_ + ": there is no folder " + parent.string() + "; make it first");
  }
  if (folder < 0) {
    const int cause = errno;
    std::error_code ignored;
    if (link == FolderLink::kRefused && fs::is_symlink(parent, ignored)) {
      throw Error(name_ + ": its folder is a symbolic link; remove the link");
    }
    Fail("cannot be written", cause);
  }
  CheckEntry(folder, place->entry, name_);
  if (IsFirstTimeIn(folder)) RemoveAbandonedIn(folder);
  do {
    place->part = NewPartName(place->entry);
    workPath_ = path.parent_path() / place->part;
    place->file.Reset(openat(folder, place->part.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (place->file.Number() < 0 && errno != EEXIST) Fail("cannot be written", errno);
  } while (place->file.Number() < 0 || !LockNew(place->file.Number()));
  place->unfinished.emplace(workPath_.string());
  struct stat status {};
  if (fstat(place->file.Number(), &status) == 0) place->usualMode = status.st_mode & kPermissions;
  // What was private stays so while it is written.
  if (EntryOf(folder, place->entry, AT_SYMLINK_NOFOLLOW)) fchmod(place->file.Number(), 0600);
  place_ = std::move(place);
}

WorkFile::~WorkFile() {
  if (!place_->part.empty()) unlinkat(place_->folder.Number(), place_->part.c_str(), 0);
}

void WorkFile::Write(const void* bytes, size_t size) {
  const auto* next = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t written = write(place_->file.Number(), next, size);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail("cannot be written", errno);
    next += written;
    size -= static_cast<size_t>(written);
  }
}

void WorkFile::Seek(int64_t position) {
  if (lseek(place_->file.Number(), position, SEEK_SET) < 0) Fail("cannot be written", errno);
}

void WorkFile::Finish(FolderSync sync) {
  const int folder = place_->folder.Number(), file = place_->file.Number();
  const auto old = EntryOf(folder, place_->entry, AT_SYMLINK_NOFOLLOW);
  if (old && S_ISREG(old->st_mode)) {
    TakeOver(file, *old);
  } else {
    fchmod(file, place_->usualMode);
  }
  // Otherwise the name might reach the disk before the content does.
  if (!Sync(file)) Fail("cannot be written", errno);
  if (renameat(folder, place_->part.c_str(), folder, place_->entry.c_str()) != 0) {
    Fail("cannot be given its name", errno);
  }
  place_->part.clear();
  place_->unfinished.reset();
  // Only now: until it has its name, its lock shows other runs that it is not abandoned.
  if (!place_->file.Close()) Fail("cannot be written", errno);
  if (sync == FolderSync::kNow && !Sync(folder)) Fail("cannot be kept on the disk", errno);
}

void WorkFile::Fail(const char* doing, int error) const {
  throw Error(name_ + ": " + doing + ": " + TextOf(error));
}

void SyncFolderOf(const std::string& name) {
  const Descriptor folder(OpenFolder(FolderPathOf(name), FolderLink::kFollowed));
  if (folder.Number() < 0 || !Sync(folder.Number())) {
    throw Error(name + ": cannot be kept on the disk: " + TextOf(errno));
  }
}

void MakeFolders(const std::string& folder) {
  std::error_code error;
  fs::path path = folder;
  if (!path.has_filename()) path = path.parent_path();  // "films/"
  if (path.empty() || fs::is_directory(path, error)) return;
  if (path.has_parent_path() && path.parent_path() != path) {
    MakeFolders(path.parent_path().string());
  }
  if (mkdir(path.c_str(), 0777) != 0 && (errno != EEXIST || !fs::is_directory(path, error))) {
    throw Error(folder + ": cannot be made a folder: " + TextOf(errno));
  }
  SyncFolderOf(path.string());
}

void RemoveAbandonedParts(const fs::path& folder) {
  const Descriptor opened(OpenFolder(folder, FolderLink::kFollowed));
  if (opened.Number() < 0) return;
  IsFirstTimeIn(opened.Number());
  RemoveAbandonedIn(opened.Number());
}

}  // namespace kelto::host
