#include "host/files/input_file.h"

#include "host/base/error.h"
#include "host/files/path_text.h"

namespace kelto::host {

namespace fs = std::filesystem;

bool IsFile(const fs::path& path) { return fs::is_regular_file(StatusOf(path)); }

bool IsFile(const std::string& path) { return IsFile(PathOf(path)); }

void CheckFile(const std::string& path, const std::string& meaning) {
  const fs::file_status status = StatusOf(PathOf(path));
  if (!fs::exists(status)) throw Error(path + ": there is no such file");
  if (fs::is_directory(status)) throw Error(path + ": is a folder, not " + meaning);
  if (!fs::is_regular_file(status)) throw Error(path + ": is not an ordinary file");
}

}  // namespace kelto::host
