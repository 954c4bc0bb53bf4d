#include "host/files/path_text.h"

namespace kelto::host {

namespace fs = std::filesystem;

std::string NameOf(const std::string& text) { return TextOf(PathOf(text).filename()); }

std::string AbsoluteText(const std::string& text) {
  std::error_code error;
  const fs::path absolute = fs::absolute(PathOf(text), error);
  return error ? text : TextOf(absolute.lexically_normal());
}

}  // namespace kelto::host
