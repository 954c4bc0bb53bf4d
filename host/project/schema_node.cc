#include "host/project/schema_node.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace kelto::host {
namespace {

using nlohmann::json;

/// Deeper than any schema that does not refer to itself.
constexpr int kMaxDepth = 32;

/// Those that demand nothing, or that others look at.
constexpr std::array<std::string_view, 6> kAnnotations = {"$schema",     "title",   "description",
                                                          "definitions", "default", "examples"};

constexpr std::array<std::string_view, 6> kTypes = {"integer", "number", "boolean",
                                                    "string",  "array",  "object"};

template <typename List>
bool Contains(const List& list, std::string_view word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

[[noreturn]] void Fail(std::string_view keyword, const json& value) {
  throw std::logic_error("the schema has \"" + std::string(keyword) + "\": " + value.dump() +
                         ", which the validator does not know");
}

/// The value of `keyword` as a list of strings.
std::vector<std::string> Strings(std::string_view keyword, const json& value) {
  if (!value.is_array()) Fail(keyword, value);
  std::vector<std::string> strings;
  for (const json& one : value) {
    if (!one.is_string()) Fail(keyword, value);
    strings.push_back(one);
  }
  return strings;
}

/// NAMES of {"required": NAMES}.
std::vector<std::string> Demanded(std::string_view keyword, const json& value) {
  if (!value.is_object() || value.size() != 1 || !value.contains("required")) Fail(keyword, value);
  return Strings(keyword, value["required"]);
}

std::vector<std::string> Types(const json& value) {
  std::vector<std::string> types =
      value.is_array() ? Strings("type", value) : Strings("type", json::array({value}));
  for (const std::string& type : types) {
    if (!Contains(kTypes, type)) Fail("type", value);
  }
  return types;
}

std::vector<std::string> Names(const json& properties) {
  std::vector<std::string> names;
  for (const auto& [name, ignored] : properties.items()) names.push_back(name);
  return names;
}

SchemaRule RuleOf(const json& schema) {
  SchemaRule rule;
  // Elsewhere "required" holds for whatever is no object.
  const bool ofObjects = schema.contains("type") && schema["type"] == "object";
  for (const auto& [keyword, value] : schema.items()) {
    if (keyword == "type") {
      rule.types = Types(value);
    } else if (keyword == "enum" && value.is_array()) {
      rule.values = value;
    } else if (keyword == "minimum" && value.is_number() && schema.contains("maximum")) {
      rule.minimum = value;
    } else if (keyword == "maximum" && value.is_number() && schema.contains("minimum")) {
      rule.maximum = value;
    } else if (keyword == "minLength" && value == 1) {
      rule.nonEmpty = true;
    } else if (keyword == "pattern" && value.is_string() && schema.contains("examples")) {
      rule.pattern.emplace(value.get<std::string>());
      rule.examples = schema["examples"];
    } else if (keyword == "minItems" && value.is_number_unsigned()) {
      rule.minItems = value;
    } else if (keyword == "maxItems" && value.is_number_unsigned()) {
      rule.maxItems = value;
    } else if (keyword == "additionalProperties" && value.is_boolean()) {
      if (!value.get<bool>()) rule.fields = Names(schema.value("properties", json::object()));
    } else if (keyword == "required") {
      rule.required = Strings(keyword, value);
    } else if (keyword == "not" && ofObjects) {
      rule.notTogether = Demanded(keyword, value);
    } else if (keyword == "oneOf" && ofObjects && value.is_array()) {
      for (const json& one : value) {
        const std::vector<std::string> names = Demanded(keyword, one);
        if (names.size() != 1) Fail(keyword, value);
        rule.exactlyOne.push_back(names[0]);
      }
    } else if (!(keyword == "properties" && value.is_object()) && keyword != "items" &&
               keyword != "allOf" && !Contains(kAnnotations, keyword)) {
      Fail(keyword, value);
    }
  }
  return rule;
}

class Compiler {
 public:
  explicit Compiler(const json& root) : root_(root) {}

  /// What `schemas` demand together of one value.
  std::unique_ptr<const SchemaNode> Compile(const std::vector<const json*>& schemas, int depth) {
    std::vector<const json*> parts;
    for (const json* schema : schemas) Collect(*schema, parts, depth);
    auto node = std::make_unique<SchemaNode>();
    std::map<std::string, std::vector<const json*>> fields;
    std::vector<const json*> items;
    for (const json* part : parts) {
      node->rules.push_back(RuleOf(*part));
      if (part->contains("items")) items.push_back(&(*part)["items"]);
      if (!part->contains("properties")) continue;
      for (const auto& [name, field] : (*part)["properties"].items())
        fields[name].push_back(&field);
    }
    for (const auto& [name, of] : fields) node->fields[name] = Compile(of, depth + 1);
    if (!items.empty()) node->items = Compile(items, depth + 1);
    return node;
  }

 private:
  /// Adds `schema` and all that it refers to and includes.
  void Collect(const json& schema, std::vector<const json*>& parts, int depth) {
    if (schema == true) return;
    if (!schema.is_object() || depth > kMaxDepth) Fail("schema", schema);
    if (const auto reference = schema.find("$ref"); reference != schema.end()) {
      const std::string pointer = *reference;
      if (!pointer.starts_with("#/")) Fail("$ref", *reference);
      const json::json_pointer place(pointer.substr(1));
      if (!root_.contains(place)) Fail("$ref", *reference);
      Collect(root_.at(place), parts, depth + 1);
      return;  // a reference's neighbours do not hold
    }
    parts.push_back(&schema);
    if (!schema.contains("allOf")) return;
    for (const json& part : schema["allOf"]) Collect(part, parts, depth + 1);
  }

  const json& root_;
};

}  // namespace

std::unique_ptr<const SchemaNode> CompileSchema(const json& schema) {
  return Compiler(schema).Compile({&schema}, 0);
}

}  // namespace kelto::host
