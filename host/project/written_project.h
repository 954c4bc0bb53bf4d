// What all projects have in common as they are written.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kelto::host {

/// The text of `document` for the file `path`; `read` throws Error for one that could not be read
/// again. Throws Error that says so.
std::string WrittenProject(const std::string& path,
                           const std::function<nlohmann::ordered_json()>& document,
                           const std::function<void(const std::string& text)>& read);

/// Writes a project's text, at once or not at all, or to the standard output. Throws Error, also
/// where `path` is one of `sources`, the files that the project is made of.
void WriteProjectText(const std::string& path, const std::string& text,
                      const std::vector<std::string>& sources);

}  // namespace kelto::host
