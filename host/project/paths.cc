#include "host/project/paths.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <system_error>

#include "host/files/path_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

bool IsNetworkPath(const std::string& path) { return path.starts_with("\\\\"); }

/// The path in full, without "." in it. A ".." stays, since what stands before it may be a link.
fs::path Full(const std::string& path) {
  std::error_code error;
  const fs::path full = fs::absolute(PathOf(path), error);
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
  if (error) return PathOf(path);
  return std::find(full.begin(), full.end(), "..") == full.end() ? full.lexically_normal() : full;
}

}  // namespace

std::string FromProject(const std::string& project, const std::string& named) {
  if (IsNetworkPath(named)) return named;
  return TextOf(PathOf(project).parent_path() / PathOf(named));
}

std::string ForProject(const std::string& project, const std::string& path) {
  if (path.empty() || IsNetworkPath(path)) return path;
  const fs::path full = Full(path);
  const fs::path relative = full.lexically_relative(Full(project).parent_path());
  const bool below = !relative.empty() && *relative.begin() != "..";
  std::string text = TextOf(below ? relative : full);
  if (below && fs::path::preferred_separator != '/')
    std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

}  // namespace kelto::host
