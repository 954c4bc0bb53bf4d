#include "host/project/validator.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "host/project/diagnostic.h"
#include "host/project/schema_node.h"

namespace kelto::host {
namespace {

using nlohmann::json;

std::string Joined(const json& values, const char* between) {
  std::string text;
  for (const json& value : values) text += (text.empty() ? "" : between) + value.dump();
  return text;
}

bool IsOfType(const json& value, const std::string& type) {
  if (type == "integer") return value.is_number_integer();
  if (type == "number") return value.is_number();
  if (type == "boolean") return value.is_boolean();
  if (type == "string") return value.is_string();
  return type == "array" ? value.is_array() : value.is_object();
}

std::string WordFor(const std::string& type) {
  if (type == "integer") return "an integer";
  if (type == "number") return "a number";
  if (type == "boolean") return "true or false";
  if (type == "string") return "a string";
  return type == "array" ? "an array [...]" : "an object {...}";
}

std::string OfType(const SchemaRule& rule, const json& value) {
  const auto fits = [&](const std::string& type) { return IsOfType(value, type); };
  if (rule.types.empty() || std::any_of(rule.types.begin(), rule.types.end(), fits)) return "";
  std::string words;
  for (const std::string& type : rule.types) words += (words.empty() ? "" : " or ") + WordFor(type);
  return Shown(value) + " is not " + words;
}

std::string OfList(const SchemaRule& rule, const json& value) {
  if (!rule.values) return "";
  if (std::find(rule.values->begin(), rule.values->end(), value) != rule.values->end()) return "";
  return Shown(value) + " is not one of " + Joined(*rule.values, ", ");
}

std::string OfBounds(const SchemaRule& rule, const json& value) {
  if (!value.is_number() || !rule.minimum) return "";
  if (value >= *rule.minimum && value <= *rule.maximum) return "";
  return Shown(value) + " is not from " + rule.minimum->dump() + " to " + rule.maximum->dump();
}

std::string OfText(const SchemaRule& rule, const json& value) {
  if (!value.is_string()) return "";
  const auto& text = value.get_ref<const std::string&>();
  if (rule.nonEmpty && text.empty()) return "is empty";
  if (!rule.pattern || std::regex_search(text, *rule.pattern)) return "";
  return Shown(value) + " is not of the form of " + Joined(rule.examples, " or ");
}

std::string OfLength(const SchemaRule& rule, const json& value) {
  if (!value.is_array()) return "";
  const size_t size = value.size();
  if (size >= rule.minItems && size <= rule.maxItems) return "";
  const std::string found = "has " + std::to_string(size) + " entries, not ";
  const bool exactly = rule.minItems == rule.maxItems;
  if (size < rule.minItems) {
    return found + (exactly ? "" : "at least ") + std::to_string(rule.minItems);
  }
  return found + (exactly ? "" : "at most ") + std::to_string(rule.maxItems);
}

std::string OfFields(const SchemaRule& rule, const json& value) {
  if (!value.is_object()) return "";
  const auto given = [&](const std::string& name) { return value.contains(name); };
  for (const std::string& name : rule.required) {
    if (!given(name)) return "has no " + json(name).dump();
  }
  if (!rule.exactlyOne.empty()) {
    const auto count = std::count_if(rule.exactlyOne.begin(), rule.exactlyOne.end(), given);
    if (count != 1) {
      return (count == 0 ? "has none of " : "has more than one of ") +
             Joined(json(rule.exactlyOne), ", ");
    }
  }
  if (!rule.notTogether.empty() &&
      std::all_of(rule.notTogether.begin(), rule.notTogether.end(), given)) {
    return "has both " + Joined(json(rule.notTogether), " and ");
  }
  return "";
}

/// The name of the first field of `value` that the rule does not know; it may be empty.
std::optional<std::string> UnknownField(const SchemaRule& rule, const json& value) {
  if (!value.is_object() || !rule.fields) return std::nullopt;
  for (const auto& [name, ignored] : value.items()) {
    if (std::find(rule.fields->begin(), rule.fields->end(), name) == rule.fields->end())
      return name;
  }
  return std::nullopt;
}

struct Fault {
  FieldPath path;  ///< from the innermost step to the outermost
  std::string text;
};

/// What is wrong with a value itself, whatever it holds.
std::optional<Fault> OwnFault(const SchemaNode& node, const json& value) {
  for (const auto check : {OfType, OfList, OfBounds, OfText, OfLength}) {
    for (const SchemaRule& rule : node.rules) {
      if (std::string text = check(rule, value); !text.empty()) return Fault{{}, std::move(text)};
    }
  }
  for (const SchemaRule& rule : node.rules) {
    if (const std::optional<std::string> name = UnknownField(rule, value)) {
      return Fault{{*name},
                   "there is no such field; there are " + Joined(json(*rule.fields), ", ")};
    }
  }
  for (const SchemaRule& rule : node.rules) {
    if (std::string text = OfFields(rule, value); !text.empty()) return Fault{{}, std::move(text)};
  }
  return std::nullopt;
}

/// The first fault of a value and of all that it holds. What holds a faulty value is faulty, too,
/// so the innermost comes first.
std::optional<Fault> FirstFault(const SchemaNode& node, const json& value) {
  if (value.is_array() && node.items) {
    for (size_t i = 0; i < value.size(); ++i) {
      if (std::optional<Fault> fault = FirstFault(*node.items, value[i])) {
        fault->path.push_back(IndexStep(i));
        return fault;
      }
    }
  } else if (value.is_object()) {
    for (const auto& [name, part] : value.items()) {
      const auto field = node.fields.find(name);
      if (field == node.fields.end()) continue;
      if (std::optional<Fault> fault = FirstFault(*field->second, part)) {
        fault->path.push_back(name);
        return fault;
      }
    }
  }
  return OwnFault(node, value);
}

}  // namespace

Validator::Validator(const json& schema) : root_(CompileSchema(schema)) {}

Validator::~Validator() = default;

std::string Validator::FirstDiagnostic(const json& document) const {
  std::optional<Fault> fault = FirstFault(*root_, document);
  if (!fault) return "";
  std::reverse(fault->path.begin(), fault->path.end());
  return ToString(fault->path) + ": " + fault->text;
}

}  // namespace kelto::host
