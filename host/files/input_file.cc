#include "host/files/input_file.h"

#include <system_error>

#include "host/base/error.h"

namespace kelto::host {

namespace fs = std::filesystem;

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

void CheckFile(const std::string& path, const std::string& meaning) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) throw Error(path + ": there is no such file");
  if (fs::is_directory(status)) throw Error(path + ": is a folder, not " + meaning);
  if (!fs::is_regular_file(status)) throw Error(path + ": is not an ordinary file");
}

}  // namespace kelto::host
