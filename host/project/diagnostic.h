// How a diagnostic of a project names a field and shows a value.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kelto::host {

/// A way from a document's root to a value: names of fields and, as "[2]", indexes of arrays.
using FieldPath = std::vector<std::string>;

/// "[2]".
std::string IndexStep(size_t index);

/// "parameters.size[2].value"; "the file" for the root. One line, whatever the names hold.
std::string ToString(const FieldPath& path);

/// A value as it stands in JSON, in one line, cut to 60 characters.
std::string Shown(const nlohmann::json& value);

}  // namespace kelto::host
