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

/// The validator's way to a value: "<root>", then "[name]" or "[2]".
FieldPath PathOf(const std::vector<std::string>& context, const json& document) {
  FieldPath path;
  const json* value = &document;
  for (size_t i = 1; i < context.size(); ++i) {
    const std::string name = context[i].substr(1, context[i].size() - 2);
    if (value->is_array()) {
      path.push_back(context[i]);
      value = &value->at(std::stoul(name));
    } else if (value->is_object() && value->contains(name)) {
      path.push_back(name);
      value = &value->at(name);
    } else {
      break;
    }
  }
  return path;
}

}  // namespace

void CheckProject(const json& document) {
  valijson::ValidationResults results;
  valijson::Validator validator(valijson::Validator::kStrongTypes);
  if (validator.validate(CompiledSchema(), valijson::adapters::NlohmannJsonAdapter(document),
                         &results)) {
    return;
  }
  // What holds a faulty value is faulty too; the innermost is what the user has to look at.
  const valijson::ValidationResults::Error* innermost = nullptr;
  for (const auto& error : results) {
    if (innermost == nullptr || error.context.size() > innermost->context.size()) {
      innermost = &error;
    }
  }
  if (innermost == nullptr) throw Error("the file: is no project");
  for (FieldPath path = PathOf(innermost->context, document);; path.pop_back()) {
    const std::string complaint = Complaint(SchemaDocument(), document, path);
    if (!complaint.empty()) throw Error(complaint);
    if (path.empty()) break;
  }
  throw Error(ToString(PathOf(innermost->context, document)) + ": " + innermost->description);
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
