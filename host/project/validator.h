// Checks JSON documents against a schema and says, in words, what is wrong with them.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kelto::host {

struct SchemaNode;

/// A JSON Schema of draft 7, compiled: references followed, regular expressions ready. It knows the
/// keywords that the schema of project files uses, and these in the forms that it uses there:
///
/// - of any value: `$ref` within the file, `allOf`, `type` (one or several), `enum`;
/// - of numbers: `minimum` and `maximum`, both;
/// - of strings: `minLength` of 1, `pattern` with `examples`, which diagnostics show;
/// - of arrays: `items` (one schema for all), `minItems`, `maxItems`;
/// - of objects: `properties`, `additionalProperties` (true or false), `required`, and beside a
/// `type`
///   of object `not` of `required`, and `oneOf` of schemas that require one field each.
///
/// A number without fraction is an integer only if it was parsed as one.
class Validator {
 public:
  /// Throws std::logic_error for a schema with other keywords or forms, with its place in the
  /// schema.
  explicit Validator(const nlohmann::json& schema);
  ~Validator();

  /// The first thing wrong with `document`, "FIELD: what is wrong"; empty when it is valid. Fields
  /// are checked in the order of their names, and what a field holds before the field itself.
  std::string FirstDiagnostic(const nlohmann::json& document) const;

 private:
  std::unique_ptr<const SchemaNode> root_;
};

}  // namespace kelto::host
