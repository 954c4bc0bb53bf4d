// The validator that projects are checked by, held against one of a library: both accept the same
// documents. What is wrong with the others is the first's own business.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "host/base/error.h"
#include "host/plan/default_plan.h"
#include "host/project/json_text.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"
#include "host/project/validator.h"
#include "tests/host/project/mutator.h"
#include "tests/host/project/random_plan.h"

namespace kelto::test {
namespace {

using nlohmann::json;

/// Both validators for one schema.
class Pair {
 public:
  explicit Pair(const json& schema) : ours_(schema) {
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(valijson::adapters::NlohmannJsonAdapter(schema), theirs_);
  }

  bool Ours(const json& document) const { return ours_.FirstDiagnostic(document).empty(); }
  bool Theirs(const json& document) const {
    valijson::Validator validator(valijson::Validator::kStrongTypes);
    return validator.validate(theirs_, valijson::adapters::NlohmannJsonAdapter(document), nullptr);
  }

 private:
  host::Validator ours_;
  valijson::Schema theirs_;
};

/// As projects are parsed; nothing for a text that is refused before it is validated.
std::optional<json> Parsed(const std::string& text) {
  try {
    return host::ParseJson(text);
  } catch (const host::Error&) {
    return std::nullopt;
  }
}

TEST(ValidatorAgreement, OfDamagedProjects) {
  const Pair validators(json::parse(host::ProjectSchemaText()));
  RandomPlan random(11, 3);
  std::vector<std::string> texts = {
      R"({"image": "a", "over": "b", "audio": "c", "motion": "fly", "playMode": 1,
          "film": {"width": 8, "height": 8, "rate": "25/1", "seconds": 2, "fields": "top",
                   "displayAspect": "16:9"},
          "parameters": {"size": [{"frame": 0, "value": 1}, {"seconds": 1, "value": 2}],
                         "bgcolor": {"value": "#102040"}, "path": {}}})"};
  for (int i = 0; i < 20; ++i) texts.push_back(host::ProjectText("some.json", random.Make()));
  Mutator mutator(20261122);
  int valid = 0, invalid = 0;
  for (int i = 0; i < 4000; ++i) {
    const std::string text = mutator.Mutate(texts[i % texts.size()]);
    const std::optional<json> document = Parsed(text);
    if (!document) continue;
    const bool theirs = validators.Theirs(*document);
    ASSERT_EQ(validators.Ours(*document), theirs) << text;
    ++(theirs ? valid : invalid);
  }
  EXPECT_GT(valid, 200);
  EXPECT_GT(invalid, 800);
}

TEST(ValidatorAgreement, OfEachKeyword) {
  const std::vector<const char*> values = {"null",
                                           "true",
                                           "0",
                                           "-0.0",
                                           "1",
                                           "2.5",
                                           "1e300",
                                           R"("")",
                                           R"("a")",
                                           "[]",
                                           "[1]",
                                           R"(["a", "b"])",
                                           "[1, 2, 3]",
                                           R"({"a": 1})",
                                           "{}",
                                           R"({"a": "x", "b": 2})",
                                           R"({"c": [1, "a"]})",
                                           R"("ba")",
                                           "false",
                                           R"({"b": {}})"};
  const std::vector<const char*> schemas = {
      "{}",
      R"({"type": "integer"})",
      R"({"type": ["number", "array"]})",
      R"({"type": "boolean"})",
      R"({"type": "string"})",
      R"({"type": "object"})",
      R"({"enum": [0, "a", [1], {"a": 1}]})",
      R"({"minimum": 0, "maximum": 2.5})",
      R"({"minLength": 1})",
      R"({"pattern": "^a", "examples": ["a"]})",
      R"({"minItems": 1, "maxItems": 2})",
      R"({"items": {"type": "integer"}})",
      R"({"properties": {"a": {"type": "integer"}}})",
      R"({"properties": {"a": true}, "additionalProperties": false})",
      R"({"required": ["a"]})",
      R"({"type": "object", "not": {"required": ["a", "b"]}})",
      R"({"type": "object", "oneOf": [{"required": ["a"]}, {"required": ["b"]}]})",
      R"({"properties": {"c": {"items": {"type": "integer"}}}})",
      R"({"definitions": {"d": {"type": "array"}}, "allOf": [{"$ref": "#/definitions/d"},
          {"maxItems": 1}]})"};
  for (const char* schema : schemas) {
    const Pair validators(json::parse(schema));
    for (const char* value : values) {
      const json document = json::parse(value);
      EXPECT_EQ(validators.Ours(document), validators.Theirs(document))
          << schema << " of " << value;
    }
  }
}

}  // namespace
}  // namespace kelto::test
