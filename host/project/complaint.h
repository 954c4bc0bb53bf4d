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

/// "FIELD: what is wrong", or an empty text when nothing of what is looked at is: types, lists of
/// values, bounds, patterns, lengths, fields that lack, are unknown or exclude each other. `path`
/// leads to a value of `document`, or to one that is not there.
std::string Complaint(const nlohmann::json& schema, const nlohmann::json& document,
                      const FieldPath& path);

}  // namespace kelto::host
