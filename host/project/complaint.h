// What is wrong with a value, by the schema that it breaks, in words that name the field.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kelto::host {

/// A way from a document's root to a value: names of fields and, as "[2]", places in arrays.
using FieldPath = std::vector<std::string>;

/// "[2]".
std::string PlaceStep(size_t place);

/// "parameters.size[2].value"; "the file" for the root.
std::string ToString(const FieldPath& path);

/// A value as it stands in JSON, in one line, cut to a few words' length.
std::string Shown(const nlohmann::json& value);

/// The first thing that is wrong with `document`, "FIELD: what is wrong", fields being looked at in
/// the order of their names, and what is in a field before the field itself. Empty when nothing of
/// what is looked at is wrong: types, lists of values, bounds, patterns, lengths, fields that are
/// missing, are unknown or exclude each other.
std::string FirstComplaint(const nlohmann::json& schema, const nlohmann::json& document);

}  // namespace kelto::host
