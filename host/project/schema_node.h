// A JSON Schema in the form that values are checked against.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace kelto::host {

/// What one schema object demands of a value itself, whatever it holds.
struct SchemaRule {
  std::vector<std::string> types;  ///< any when empty
  std::optional<nlohmann::json> values;
  std::optional<nlohmann::json> minimum, maximum;  ///< both or none
  bool nonEmpty = false;
  std::optional<std::regex> pattern;
  nlohmann::json examples;  ///< strings that match the pattern
  size_t minItems = 0;
  size_t maxItems = SIZE_MAX;
  std::optional<std::vector<std::string>> fields;  ///< all that an object may have
  std::vector<std::string> required;
  std::vector<std::string> exactlyOne;   ///< an object has exactly one of these
  std::vector<std::string> notTogether;  ///< nor all of these
};

/// All that is demanded of a value and of what it holds: by a schema, what it refers to and what it
/// includes.
struct SchemaNode {
  std::vector<SchemaRule> rules;
  std::map<std::string, std::unique_ptr<const SchemaNode>> fields;
  std::unique_ptr<const SchemaNode> items;
};

/// Compiles a schema; see Validator. Throws std::logic_error.
std::unique_ptr<const SchemaNode> CompileSchema(const nlohmann::json& schema);

}  // namespace kelto::host
