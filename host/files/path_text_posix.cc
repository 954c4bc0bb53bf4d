#include "host/files/path_text.h"

namespace kelto::host {

namespace fs = std::filesystem;

std::filesystem::path PathOf(const std::string& text) { return text; }

std::string TextOf(const std::filesystem::path& path) { return path.string(); }

fs::path ForCalls(const fs::path& path) { return path; }

std::FILE* OpenFile(const std::filesystem::path& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

std::FILE* MakeFile(const std::filesystem::path& path) { return std::fopen(path.c_str(), "w+bx"); }

fs::file_status StatusOf(const fs::path& path) {
  std::error_code error;
  return fs::status(path, error);
}

std::vector<fs::path> EntriesOf(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    entries.push_back(entry->path());
  }
  return entries;
}

void RemoveFile(const fs::path& path) {
  std::error_code ignored;
  fs::remove(path, ignored);
}

std::string ReasonOf(const std::error_code& error) { return error.message(); }

}  // namespace kelto::host
