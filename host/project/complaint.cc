#include "host/project/complaint.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>

namespace kelto::host {
namespace {

using nlohmann::json;

constexpr size_t kMaxShown = 60;
constexpr auto kReplace = json::error_handler_t::replace;

/// Schemas that hold for the same value.
using Schemas = std::vector<const json*>;

bool IsPlace(const std::string& step) { return step.starts_with('['); }

/// Adds `schema` and all that it refers to and includes.
void Add(const json& root, const json& schema, Schemas& schemas) {
  if (!schema.is_object()) return;
  if (const auto reference = schema.find("$ref"); reference != schema.end()) {
    const std::string pointer = reference->get<std::string>().substr(1);  // after the "#"
    return Add(root, root.at(json::json_pointer(pointer)), schemas);
  }
  schemas.push_back(&schema);
  if (!schema.contains("allOf")) return;
  for (const json& part : schema["allOf"]) Add(root, part, schemas);
}

/// What `schemas`, those of an object, say of one of its fields.
Schemas OfField(const json& root, const Schemas& schemas, const std::string& name) {
  Schemas below;
  for (const json* schema : schemas) {
    if (schema->contains("properties") && (*schema)["properties"].contains(name)) {
      Add(root, (*schema)["properties"][name], below);
    }
  }
  return below;
}

/// What `schemas`, those of an array, say of each of its entries.
Schemas OfEntries(const json& root, const Schemas& schemas) {
  Schemas below;
  for (const json* schema : schemas) {
    if (schema->contains("items")) Add(root, (*schema)["items"], below);
  }
  return below;
}

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
  if (type == "integer") return "a whole number";
  if (type == "number") return "a number";
  if (type == "boolean") return "true or false";
  if (type == "string") return "a text";
  return type == "array" ? "an array [...]" : "an object {...}";
}

std::string OfType(const json& schema, const json& value) {
  const auto types = schema.find("type");
  if (types == schema.end()) return "";
  const json list = types->is_array() ? *types : json::array({*types});
  std::string words;
  for (const json& type : list) {
    if (IsOfType(value, type)) return "";
    words += (words.empty() ? "" : " or ") + WordFor(type);
  }
  return Shown(value) + " is not " + words;
}

std::string OfList(const json& schema, const json& value) {
  const auto values = schema.find("enum");
  if (values == schema.end()) return "";
  if (std::find(values->begin(), values->end(), value) != values->end()) return "";
  return Shown(value) + " is not one of " + Joined(*values, ", ");
}

std::string OfBounds(const json& schema, const json& value) {
  if (!value.is_number() || !schema.contains("minimum")) return "";
  if (value >= schema["minimum"] && value <= schema["maximum"]) return "";
  return Shown(value) + " is not from " + schema["minimum"].dump() + " to " +
         schema["maximum"].dump();
}

std::string OfText(const json& schema, const json& value) {
  if (!value.is_string()) return "";
  const auto& text = value.get_ref<const std::string&>();
  if (schema.contains("minLength") && text.empty()) return "is empty";
  if (!schema.contains("pattern")) return "";
  if (std::regex_search(text, std::regex(schema["pattern"].get<std::string>()))) return "";
  return Shown(value) + " is not of the form of " + Joined(schema["examples"], " or ");
}

std::string OfLength(const json& schema, const json& value) {
  if (!value.is_array()) return "";
  const bool few = schema.contains("minItems") && value.size() < schema["minItems"];
  const bool many = schema.contains("maxItems") && value.size() > schema["maxItems"];
  if (!few && !many) return "";
  const std::string found = "has " + std::to_string(value.size()) + " entries, not ";
  const bool exactly = schema.value("minItems", json()) == schema.value("maxItems", json());
  if (few) return found + (exactly ? "" : "at least ") + schema["minItems"].dump();
  return found + (exactly ? "" : "at most ") + schema["maxItems"].dump();
}

/// Names that the schemas {"required": [NAME]} of a list demand.
std::vector<std::string> Demanded(const json& alternatives) {
  std::vector<std::string> names;
  for (const json& one : alternatives) names.push_back(one["required"][0].get<std::string>());
  return names;
}

std::string OfFields(const json& schema, const json& value) {
  if (!value.is_object()) return "";
  for (const json& name : schema.value("required", json::array())) {
    if (!value.contains(name.get<std::string>())) return "has no " + name.dump();
  }
  if (schema.contains("oneOf")) {
    const std::vector<std::string> names = Demanded(schema["oneOf"]);
    const auto given = std::count_if(names.begin(), names.end(),
                                     [&](const std::string& name) { return value.contains(name); });
    if (given != 1) {
      return (given == 0 ? "has none of " : "has more than one of ") + Joined(json(names), ", ");
    }
  }
  if (schema.contains("not")) {
    const json& names = schema["not"]["required"];
    if (std::all_of(names.begin(), names.end(),
                    [&](const json& name) { return value.contains(name.get<std::string>()); })) {
      return "has both " + Joined(names, " and ");
    }
  }
  return "";
}

/// The first field of `value` that `schema` does not know; its name may be empty.
std::optional<std::string> UnknownField(const json& schema, const json& value) {
  if (!value.is_object() || schema.value("additionalProperties", true)) return std::nullopt;
  for (const auto& [name, ignored] : value.items()) {
    if (!schema["properties"].contains(name)) return name;
  }
  return std::nullopt;
}

/// What is wrong with a value itself, whatever it holds.
std::string OwnComplaint(const Schemas& schemas, const json& value, const FieldPath& path) {
  for (const auto check : {OfType, OfList, OfBounds, OfText, OfLength}) {
    for (const json* part : schemas) {
      const std::string fault = check(*part, value);
      if (!fault.empty()) return ToString(path) + ": " + fault;
    }
  }
  for (const json* part : schemas) {
    const std::optional<std::string> name = UnknownField(*part, value);
    if (!name) continue;
    FieldPath unknown = path;
    unknown.push_back(*name);
    json known = json::array();
    for (const auto& [field, ignored] : (*part)["properties"].items()) known.push_back(field);
    return ToString(unknown) + ": there is no such field; there are " + Joined(known, ", ");
  }
  for (const json* part : schemas) {
    const std::string fault = OfFields(*part, value);
    if (!fault.empty()) return ToString(path) + ": " + fault;
  }
  return "";
}

/// The first complaint of a value and all that it holds. What holds a faulty value is faulty too,
/// so the innermost comes first. `path` leads to the value, and does again afterwards.
std::string ComplaintBelow(const json& root, const Schemas& schemas, const json& value,
                           FieldPath& path) {
  if (schemas.empty()) return "";  // whatever is in there
  const auto look = [&](std::string step, const Schemas& below, const json& part) {
    path.push_back(std::move(step));
    std::string complaint = ComplaintBelow(root, below, part, path);
    path.pop_back();
    return complaint;
  };
  if (value.is_array()) {
    const Schemas below = OfEntries(root, schemas);
    for (size_t i = 0; i < value.size() && !below.empty(); ++i) {
      if (std::string complaint = look(PlaceStep(i), below, value[i]); !complaint.empty()) {
        return complaint;
      }
    }
  } else if (value.is_object()) {
    for (const auto& [name, part] : value.items()) {
      std::string complaint = look(name, OfField(root, schemas, name), part);
      if (!complaint.empty()) return complaint;
    }
  }
  return OwnComplaint(schemas, value, path);
}

}  // namespace

std::string PlaceStep(size_t place) {
  std::string step = "[";
  step += std::to_string(place);
  step += ']';
  return step;
}

std::string ToString(const FieldPath& path) {
  std::string text;
  for (const std::string& step : path) {
    text += text.empty() || IsPlace(step) ? "" : ".";
    const std::string quoted = json(step.substr(0, kMaxShown)).dump(-1, ' ', false, kReplace);
    // A line break in a name stays one line; a name without letters shows as its quotation marks.
    text += step.empty() ? quoted : quoted.substr(1, quoted.size() - 2);
    if (step.size() > kMaxShown) text += "...";
  }
  return text.empty() ? "the file" : text;
}

std::string Shown(const json& value) {
  std::string text = value.dump(-1, ' ', true, kReplace);
  if (text.size() <= kMaxShown) return text;
  return text.substr(0, kMaxShown) + "...";
}

std::string FirstComplaint(const json& schema, const json& document) {
  Schemas schemas;
  Add(schema, schema, schemas);
  FieldPath path;
  return ComplaintBelow(schema, schemas, document, path);
}

}  // namespace kelto::host
