// The schema as editors get it.
#include "host/project/schema.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/project/project_file.h"
#include "tests/host/project/random_plan.h"

namespace kelto::host {
namespace {

using nlohmann::json;

TEST(Schema, TheInstalledFileIsTheOneInTheProgram) {
  std::ifstream file(std::string(KELTO_SOURCE_DIR) + "/host/project/project.schema.json");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(text, ProjectSchemaText());
}

/// A list's entries as the schema has them: texts, then indexes.
json EntriesOf(const catalogue::Parameter& parameter) {
  json entries = json::array();
  for (const catalogue::Entry& entry : parameter.entries) entries.push_back(entry.text);
  for (size_t i = 0; i < parameter.entries.size(); ++i) entries.push_back(i);
  return entries;
}

TEST(Schema, DescribesTheParametersAsTheCatalogueDoes) {
  const auto schema = nlohmann::ordered_json::parse(ProjectSchemaText());
  std::vector<std::string> keys, expected;
  for (const auto& [key, field] : schema["properties"]["parameters"]["properties"].items()) {
    keys.push_back(key);
    ASSERT_NE(catalogue::Find(key), nullptr) << key;
    EXPECT_EQ(field["description"], catalogue::Find(key)->description) << key;
  }
  for (const catalogue::Parameter& parameter : catalogue::kParameters) {
    const std::string key = parameter.key;
    expected.push_back(key);
    const json value = schema["definitions"]["value-" + key];
    if (parameter.kind == catalogue::Kind::kList) {
      EXPECT_EQ(value, json({{"enum", EntriesOf(parameter)}})) << key;
    } else if (parameter.kind == catalogue::Kind::kSwitch) {
      EXPECT_EQ(value, json({{"type", "boolean"}})) << key;
    } else if (parameter.kind == catalogue::Kind::kNumber) {
      EXPECT_EQ(
          value,
          json({{"type", "number"}, {"minimum", parameter.least}, {"maximum", parameter.most}}))
          << key;
    }
  }
  EXPECT_EQ(keys, expected);
}

TEST(Schema, AcceptsWhatIsWritten) {
  test::RandomPlan random(3);
  for (int i = 0; i < 20; ++i) {
    EXPECT_NO_THROW(CheckProject(json::parse(ProjectText("p.json", random.Make()))));
  }
}

TEST(Schema, RefusesEveryFieldOfAWrongKind) {
  const json document = json::parse(R"({"image": "a", "over": "b", "audio": "c", "playMode": 1,
    "transparent": true, "linearLight": true, "film": {"width": 8, "height": 8, "rate": 25, "frames": 4, "fields": "top",
             "displayAspect": "1:1"},
    "parameters": {"size": [{"time": 0, "value": 1, "active": true}], "path": {"value": 1},
                   "position": {"value": [0, 0]}, "progressive": {"value": true}},
    "views": [{"view": "2", "hold": 1, "go": 1, "in": "linear", "out": "ease"}]})");
  EXPECT_NO_THROW(CheckProject(document));
  const json flat = document.flatten();
  EXPECT_EQ(flat.size(), 24u);
  for (const auto& [pointer, value] : flat.items()) {
    json changed = document;
    changed[json::json_pointer(pointer)] = nullptr;
    EXPECT_THROW(CheckProject(changed), Error) << pointer;
  }
}

}  // namespace
}  // namespace kelto::host
