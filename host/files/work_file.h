// A file that is written beside the one asked for and takes its name when it is complete.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace kelto::host {

/// Whether the folder that a file goes into may be a symbolic link.
enum class FolderLink { kFollowed, kRefused };

/// What happens to the folder's entry once a file has its name.
enum class FolderSync {
  kNow,    ///< it is on the disk when Finish returns
  kLater,  ///< the caller calls SyncFolderOf, for many files at once
};

/// Writes under a temporary name in the folder of the file asked for; Finish has the system write
/// everything to the disk and then gives it the name, so that not even a power cut leaves half a
/// file of that name. What a file replaces keeps its permissions and, where the system allows it,
/// its owner. Errors are thrown as Error and name the file.
///
/// The last part of the name is never resolved: a symbolic link of that name is replaced, and what
/// it leads to stays as it is. Folders, special files, links to them, and files that the folder's
/// sticky bit keeps for another user are refused before anything is written.
///
/// The first file written in a folder clears away what killed runs left there; see
/// RemoveAbandonedParts.
class WorkFile {
 public:
  explicit WorkFile(const std::string& name, FolderLink link = FolderLink::kFollowed);
  /// Removes what was not finished.
  ~WorkFile();
  WorkFile(const WorkFile&) = delete;
  WorkFile& operator=(const WorkFile&) = delete;

  /// Writes at the current position; the bytes can be read under Path() when it returns.
  void Write(const void* bytes, size_t size);
  /// Moves to `position` bytes from the start.
  void Seek(int64_t position);
  /// Where the bytes are until Finish.
  const std::filesystem::path& Path() const { return workPath_; }
  /// Closes, and takes the place of whatever had the name before. To be called once, last.
  void Finish(FolderSync sync = FolderSync::kNow);

 private:
  /// What the system needs to find the file; see work_file.cc and work_file_windows.cc.
  struct Place;

  [[noreturn]] void Fail(const char* doing, int error) const;

  std::string name_;
  std::filesystem::path workPath_;
  std::unique_ptr<Place> place_;
};

/// Has the system write the entries of the folder that `name` lies in to the disk. Throws Error.
void SyncFolderOf(const std::string& name);

/// Makes `folder` and those above it, on the disk too. One that exists is fine. Throws
/// Error.
void MakeFolders(const std::string& folder);

/// Removes the temporary files in `folder` whose writers were killed. A file counts as abandoned
/// when it is this user's, has a name that only this program gives, and no process holds it open;
/// for another machine's, which cannot be asked, nobody must have written to it for a day.
void RemoveAbandonedParts(const std::filesystem::path& folder);

}  // namespace kelto::host
