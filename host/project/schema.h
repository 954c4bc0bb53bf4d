// The JSON Schema of project files: editors complete by it, and files are checked by it. What it
// says of the effect's parameters is what the catalogue says.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace kelto::host {

/// project.schema.json.
const char* ProjectSchemaText();

/// Throws Error when `document` breaks the schema: in one line the field and what is wrong with it,
/// such as `parameters.size[2].value: 30 is not from 0.1 to 20`.
void CheckProject(const nlohmann::json& document);

}  // namespace kelto::host
