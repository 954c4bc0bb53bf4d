#include "host/effect/effect_name.h"

#include <filesystem>
#include <system_error>

#include "host/files/path_text.h"

namespace kelto::host {

namespace fs = std::filesystem;

std::string ShortestForm(const std::string& path) {
  // A network path stays as it is: it has no other form here.
  if (path.starts_with("\\\\")) return path;
  std::error_code error;
  std::string shortest = path;
  const fs::path absolute = fs::absolute(PathOf(path), error);
  const fs::path here = fs::current_path(error);
  // Only ".." that no symbolic link stands before can be left out.
  const fs::path resolved = fs::weakly_canonical(PathOf(path), error);
  const fs::path folder = fs::weakly_canonical(here, error);
  for (const fs::path& form : {absolute, resolved, resolved.lexically_relative(folder)}) {
    const std::string text = TextOf(form);
    if (!text.empty() && text.size() < shortest.size()) shortest = text;
  }
  return shortest;
}

}  // namespace kelto::host
