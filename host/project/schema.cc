#include "host/project/schema.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "host/base/error.h"
#include "host/project/complaint.h"

namespace kelto::host {
namespace {

using nlohmann::json;

const json& SchemaDocument() {
  static const json document = json::parse(ProjectSchemaText());
  return document;
}

const valijson::Schema& CompiledSchema() {
  // Whole or not there: a second try begins with an empty one.
  static const std::unique_ptr<const valijson::Schema> compiled = [] {
    auto schema = std::make_unique<valijson::Schema>();
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(valijson::adapters::NlohmannJsonAdapter(SchemaDocument()), *schema);
    return schema;
  }();
  return *compiled;
}

}  // namespace

void CheckProject(const json& document) {
  valijson::Validator validator(valijson::Validator::kStrongTypes);
  // Without a list of results it stops at the first fault; a list would hold each of millions.
  if (validator.validate(CompiledSchema(), valijson::adapters::NlohmannJsonAdapter(document),
                         nullptr)) {
    return;
  }
  const std::string complaint = FirstComplaint(SchemaDocument(), document);
  throw Error(complaint.empty() ? "the file: is no project" : complaint);
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
