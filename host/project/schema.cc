#include "host/project/schema.h"

#include <map>
#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/project/validator.h"

namespace kelto::host {
namespace {

using nlohmann::json;

const json& SchemaDocument() {
  static const json document = json::parse(ProjectSchemaText());
  return document;
}

}  // namespace

void CheckProject(const json& document) {
  static const Validator validator(SchemaDocument());
  const std::string diagnostic = validator.FirstDiagnostic(document);
  if (!diagnostic.empty()) throw Error(diagnostic);
}

std::span<const std::string> ProjectParameters() {
  static const std::vector<std::string> parameters = [] {
    // Other objects sort their fields.
    const auto ordered = nlohmann::ordered_json::parse(ProjectSchemaText());
    std::vector<std::string> keys;
    for (const auto& [key, ignored] : ordered["properties"]["parameters"]["properties"].items()) {
      keys.push_back(key);
    }
    return keys;
  }();
  return parameters;
}

std::vector<std::string> ListEntries(const std::string& parameter) {
  std::vector<std::string> entries;
  const json& value = SchemaDocument()["definitions"]["value-" + parameter];
  for (const json& entry : value.value("enum", json::array())) {
    if (entry.is_string()) entries.push_back(entry);
  }
  return entries;
}

}  // namespace kelto::host
