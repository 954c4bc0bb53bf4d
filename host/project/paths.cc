#include "host/project/paths.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <system_error>

#include "host/files/narrow_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

bool IsNetworkPath(const std::string& path) { return path.starts_with("\\\\"); }

/// The path in full, without "." in it. A ".." stays, since what stands before it may be a link.
fs::path Full(const std::string& path) {
  std::error_code error;
  const fs::path full = fs::absolute(path, error);
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
  if (error) return path;
  return std::find(full.begin(), full.end(), "..") == full.end() ? full.lexically_normal() : full;
}

}  // namespace

std::string FromProject(const std::string& project, const std::string& named) {
  if (IsNetworkPath(named)) return named;
  // A project is UTF-8 on every system.
  const std::u8string name(named.begin(), named.end());
  return NarrowText(fs::path(project).parent_path() / fs::path(name));
}

std::string ForProject(const std::string& project, const std::string& path) {
  if (path.empty() || IsNetworkPath(path)) return path;
  const fs::path full = Full(path);
  const fs::path relative = full.lexically_relative(Full(project).parent_path());
  const bool below = !relative.empty() && *relative.begin() != "..";
  return below ? relative.generic_string() : full.string();
}

}  // namespace kelto::host
