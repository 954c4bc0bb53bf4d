// What the validator says of documents, and of schemas that it cannot check by.
#include "host/project/validator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/project/schema.h"

namespace kelto::host {
namespace {

using nlohmann::json;
using testing::HasSubstr;

std::string Diagnose(const char* schema, const char* document) {
  return Validator(json::parse(schema)).FirstDiagnostic(json::parse(document));
}

/// What the constructor throws; empty when it accepts the schema.
std::string Refusal(const char* schema) {
  try {
    Validator{json::parse(schema)};
  } catch (const std::logic_error& error) {
    return error.what();
  }
  return "";
}

TEST(Validator, KnowsEveryKeywordOfTheProjectSchema) {
  EXPECT_EQ(Refusal(ProjectSchemaText()), "");
}

TEST(Validator, RefusesASchemaThatItCannotCheckBy) {
  // Where a keyword was skipped in silence, documents would be accepted that editors refuse.
  for (const char* schema :
       {R"({"multipleOf": 2})", R"({"properties": {"a": {"format": "uri"}}})",
        R"({"items": {"minLength": 2}})", R"({"items": [{}, {}]})", R"({"maximum": 2})",
        R"({"definitions": {"a": {"const": 1}}, "allOf": [{"$ref": "#/definitions/a"}]})",
        R"({"type": "null"})", R"({"pattern": "^a"})", R"({"not": {"type": "string"}})",
        R"({"oneOf": [{"type": "string"}]})", R"({"additionalProperties": {"type": "string"}})",
        R"({"properties": {"a": false}})", R"({"$ref": "other.json"})", R"({"$ref": "#/a/b"})",
        R"({"definitions": {"a": {"items": {"$ref": "#/definitions/a"}}},
            "allOf": [{"$ref": "#/definitions/a"}]})"}) {
    EXPECT_NE(Refusal(schema), "") << schema;
  }
  EXPECT_THAT(Refusal(R"({"items": {"multipleOf": 2}})"), HasSubstr(R"("multipleOf": 2)"));
}

TEST(Validator, SaysWhatIsWrong) {
  const auto expect = [](const char* schema, const char* document, const char* diagnostic) {
    EXPECT_EQ(Diagnose(schema, document), diagnostic) << schema << " of " << document;
  };
  expect(R"({"type": "object"})", "[]", "the file: [] is not an object {...}");
  expect(R"({"type": "integer"})", "2.5", "the file: 2.5 is not an integer");
  expect(R"({"type": ["number", "string"]})", "null", "the file: null is not a number or a string");
  expect(R"({"enum": ["a", 1]})", "2", R"(the file: 2 is not one of "a", 1)");
  expect(R"({"minimum": 0.1, "maximum": 20})", "30", "the file: 30 is not from 0.1 to 20");
  expect(R"({"minLength": 1})", R"("")", "the file: is empty");
  expect(R"({"pattern": "^a", "examples": ["ab", "ac"]})", R"("b")",
         R"(the file: "b" is not of the form of "ab" or "ac")");
  expect(R"({"minItems": 2, "maxItems": 2})", "[1]", "the file: has 1 entries, not 2");
  expect(R"({"maxItems": 1})", "[1, 2]", "the file: has 2 entries, not at most 1");
  expect(R"({"required": ["a"]})", "{}", R"(the file: has no "a")");
  expect(R"({"type": "object", "oneOf": [{"required": ["a"]}, {"required": ["b"]}]})", "{}",
         R"(the file: has none of "a", "b")");
  expect(R"({"type": "object", "oneOf": [{"required": ["a"]}, {"required": ["b"]}]})",
         R"({"a": 1, "b": 1})", R"(the file: has more than one of "a", "b")");
  expect(R"({"type": "object", "not": {"required": ["a", "b"]}})", R"({"a": 1, "b": 1})",
         R"(the file: has both "a" and "b")");
  expect(R"({"additionalProperties": false, "properties": {"a": true, "b": true}})", R"({"c": 1})",
         R"(c: there is no such field; there are "a", "b")");
}

TEST(Validator, NamesTheInnermostFieldThatIsWrong) {
  const char* schema = R"({"required": ["b"], "properties": {"a": {"items": {"type": "string"}}}})";
  EXPECT_EQ(Diagnose(schema, R"({"a": ["x", 5]})"), "a[1]: 5 is not a string");
  EXPECT_EQ(Diagnose(schema, R"({"a": ["x"]})"), R"(the file: has no "b")");
  EXPECT_EQ(Diagnose(schema, R"({"a": ["x"], "b": 1})"), "");
}

TEST(Validator, HoldsAValueAgainstAllThatASchemaIncludes) {
  const char* schema = R"({
    "definitions": {"any": {"type": "object", "properties": {"v": {"type": "number"}}}},
    "allOf": [{"$ref": "#/definitions/any"},
              {"properties": {"v": {"minimum": 0, "maximum": 1}}}]})";
  EXPECT_EQ(Diagnose(schema, "1"), "the file: 1 is not an object {...}");
  EXPECT_EQ(Diagnose(schema, R"({"v": "x"})"), R"(v: "x" is not a number)");
  EXPECT_EQ(Diagnose(schema, R"({"v": 2})"), "v: 2 is not from 0 to 1");
  EXPECT_EQ(Diagnose(schema, R"({"v": 1})"), "");
}

}  // namespace
}  // namespace kelto::host
