// The same on Windows, where the C library's files cannot be removed while they are open: what can
// be removed has been abandoned.
#include <io.h>
#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <set>
#include <system_error>

#include "host/base/error.h"
#include "host/files/part_name.h"
#include "host/files/path_text.h"
#include "host/files/replaceable.h"
#include "host/files/work_file.h"

namespace kelto::host {

namespace fs = std::filesystem;

struct WorkFile::Place {
  fs::path path;
  std::FILE* file = nullptr;
};

WorkFile::WorkFile(const std::string& name, FolderLink) : name_(name) {
  const fs::path path = PathOf(name);
  std::error_code error;
  const std::string why = WhyNotReplaceable(path);
  if (!why.empty()) throw Error(name_ + ": " + why);
  const fs::file_status status = StatusOf(path);
  if (fs::is_directory(status) || !path.has_filename()) {
    throw Error(name_ + ": is a folder; give it a file name");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Error(name_ + ": is not an ordinary file; write to the standard output (-) instead");
  }
  const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
  // In full, since the folder may be a drive alone, meaning the current folder there; one that
  // begins with "\\?\" is, and the standard library cannot read it.
  const bool inFull = folder.native().starts_with(L"\\\\?\\");
  if (!fs::exists(StatusOf(inFull ? folder : fs::absolute(folder, error)))) {
    throw Error(name_ + ": there is no folder " + TextOf(folder) + "; make it first");
  }
  // Once for each folder: films of numbered pictures have many files in one.
  static auto& cleared = *new std::set<fs::path>;
  if (cleared.insert(fs::absolute(folder, error)).second) RemoveAbandonedParts(folder);
  place_ = std::make_unique<Place>();
  place_->path = path;
  workPath_ = path.parent_path() / PathOf(NewPartName(TextOf(path.filename())));
  place_->file = MakeFile(workPath_);
  if (place_->file == nullptr) Fail("cannot be written", errno);
  // The encoder's container reads back what was written; large blocks need no second buffer.
  std::setvbuf(place_->file, nullptr, _IONBF, 0);
}

WorkFile::~WorkFile() {
  if (place_->file != nullptr) std::fclose(place_->file);
  if (!workPath_.empty()) RemoveFile(workPath_);
}

void WorkFile::Write(const void* bytes, size_t size) {
  if (std::fwrite(bytes, 1, size, place_->file) != size) Fail("cannot be written", errno);
}

void WorkFile::Seek(int64_t position) {
  if (_fseeki64(place_->file, position, SEEK_SET) != 0) Fail("cannot be written", errno);
}

void WorkFile::Finish(FolderSync) {
  std::FILE* file = place_->file;
  place_->file = nullptr;
  const bool synced = _commit(_fileno(file)) == 0;
  if (std::fclose(file) != 0 || !synced) Fail("cannot be written", errno);
  std::error_code error;
  fs::rename(ForCalls(workPath_), ForCalls(place_->path), error);
  if (error) throw Error(name_ + ": cannot be given its name: " + ReasonOf(error));
  workPath_.clear();
}

void WorkFile::Fail(const char* doing, int error) const {
  throw Error(name_ + ": " + doing + ": " + std::generic_category().message(error));
}

// The system keeps folders by itself.
void SyncFolderOf(const std::string&) {}

void MakeFolders(const std::string& folder) {
  const fs::path path = PathOf(folder);
  if (path.empty() || fs::is_directory(StatusOf(path))) return;
  if (path.has_relative_path()) MakeFolders(TextOf(path.parent_path()));
  if (CreateDirectoryW(ForCalls(path).c_str(), nullptr)) return;
  const std::error_code error(static_cast<int>(GetLastError()), std::system_category());
  if (fs::is_directory(StatusOf(path))) return;  // by another process meanwhile
  throw Error(folder + ": cannot be made a folder: " + ReasonOf(error));
}

void RemoveAbandonedParts(const fs::path& folder) {
  std::error_code ignored;
  for (const fs::path& entry : EntriesOf(folder, ignored)) {
    // The server knows who has a file of another machine open in a shared folder.
    if (IsPartName(TextOf(entry.filename()))) RemoveFile(entry);
  }
}

}  // namespace kelto::host
