// The same on Windows, where the C library's files cannot be removed while they are open: what can
// be removed has been abandoned.
#include <io.h>

#include <cerrno>
#include <cstdio>
#include <set>
#include <system_error>
#include <vector>

#include "host/base/error.h"
#include "host/files/narrow_text.h"
#include "host/files/part_name.h"
#include "host/files/work_file.h"

namespace kelto::host {

namespace fs = std::filesystem;

struct WorkFile::Place {
  fs::path path;
  std::FILE* file = nullptr;
};

WorkFile::WorkFile(const std::string& name, FolderLink) : name_(name) {
  const fs::path path(name);
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status) || !path.has_filename()) {
    throw Error(name_ + ": is a folder; give it a file name");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Error(name_ + ": is not an ordinary file; write to the standard output (-) instead");
  }
  const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
  if (!fs::exists(folder, error)) {
    throw Error(name_ + ": there is no folder " + NarrowText(folder) + "; make it first");
  }
  // Once for each folder: films of numbered pictures have many files in one.
  static auto& cleared = *new std::set<fs::path>;
  if (cleared.insert(fs::absolute(folder, error)).second) RemoveAbandonedParts(folder);
  place_ = std::make_unique<Place>();
  place_->path = path;
  workPath_ = path.parent_path() / NewPartName(NarrowText(path.filename()));
  // "x": the name is nobody else's.
  place_->file = std::fopen(NarrowText(workPath_).c_str(), "wbx");
  if (place_->file == nullptr) Fail("cannot be written", errno);
  // The encoder's container reads back what was written; large blocks need no second buffer.
  std::setvbuf(place_->file, nullptr, _IONBF, 0);
}

WorkFile::~WorkFile() {
  if (place_->file != nullptr) std::fclose(place_->file);
  std::error_code ignored;
  if (!workPath_.empty()) fs::remove(workPath_, ignored);
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
  fs::rename(workPath_, place_->path, error);
  if (error) Fail("cannot be given its name", error.value());
  workPath_.clear();
}

void WorkFile::Fail(const char* doing, int error) const {
  throw Error(name_ + ": " + doing + ": " + std::generic_category().message(error));
}

// The system keeps folders by itself.
void SyncFolderOf(const std::string&) {}

void MakeFolders(const std::string& folder) {
  std::error_code error;
  fs::create_directories(fs::path(folder), error);
  if (error) throw Error(folder + ": cannot be made a folder: " + error.message());
}

void RemoveAbandonedParts(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> parts;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::string name = NarrowText(entry->path().filename());
    // Who has a file of another machine open in a shared folder, the server tells.
    if (IsPartName(name)) parts.push_back(entry->path());
  }
  for (const fs::path& part : parts) fs::remove(part, error);
}

}  // namespace kelto::host
