// The JSON Schema of project files. It is the one account of their fields: editors complete by it,
// files are checked by it, and its lists and their order are those of the effect's panel.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <vector>

namespace kelto::host {

/// project.schema.json.
const char* ProjectSchemaText();

/// Throws Error when `document` breaks the schema: in one line the field and what is wrong with it,
/// such as `parameters.size[2].value: 30 is not from 0.1 to 20`.
void CheckProject(const nlohmann::json& document);

/// The keys of the effect's parameters, in the order of its panel.
std::span<const std::string> ProjectParameters();

/// The entries of a list parameter, in order; empty for parameters of other kinds.
std::vector<std::string> ListEntries(const std::string& parameter);

}  // namespace kelto::host
