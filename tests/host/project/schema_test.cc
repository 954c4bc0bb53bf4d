// The schema as editors get it, and the effect that it speaks of.
#include "host/project/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/options/choices.h"
#include "host/project/project_file.h"
#include "runtime/hfx/host.h"
#include "tests/host/project/random_plan.h"

namespace kelto::host {
namespace {

using nlohmann::json;

TEST(Schema, TheInstalledFileIsTheOneInTheProgram) {
  std::ifstream file(std::string(KELTO_SOURCE_DIR) + "/host/project/project.schema.json");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(text, ProjectSchemaText());
}

TEST(Schema, HoldsTheEffectsParametersInTheOrderOfItsPanel) {
  std::string error;
  const auto module = hfx::Module::Load(KELTO_MODULE, &error);
  ASSERT_NE(module, nullptr) << error;
  const auto effect = hfx::Effect::Create(*module, 1, &error);
  ASSERT_NE(effect, nullptr) << error;
  std::vector<std::string> keys;
  for (const hfxParameter* parameter : hfx::ParametersOf(effect->instance())) {
    if (hfx::KindOf(*parameter) == hfx::ParamKind::Group) continue;
    keys.emplace_back(parameter->GetKeyName());
    std::vector<std::string> entries;
    if (const auto* list = dynamic_cast<const hfxPList*>(parameter)) {
      for (int32_t i = 0; i < list->GetNumEntries(); ++i) entries.emplace_back(list->GetEntry(i));
    }
    EXPECT_EQ(ListEntries(keys.back()), entries) << keys.back();
  }
  EXPECT_THAT(ProjectParameters(), testing::ElementsAreArray(keys));
}

TEST(Schema, HoldsTheListsOfTheCommandLine) {
  for (const ChoiceList& list : ChoiceLists()) {
    for (const Choice& choice : list.choices) {
      EXPECT_THAT(ListEntries(list.parameter), testing::Contains(choice.entry));
    }
  }
}

TEST(Schema, AcceptsWhatIsWritten) {
  test::RandomPlan random(3);
  for (int i = 0; i < 20; ++i) {
    EXPECT_NO_THROW(CheckProject(json::parse(ProjectText("p.json", random.Make()))));
  }
}

TEST(Schema, RefusesEveryFieldOfAWrongKind) {
  const json document = json::parse(R"({"image": "a", "over": "b", "audio": "c", "playMode": 1,
    "film": {"width": 8, "height": 8, "rate": 25, "frames": 4, "fields": "top",
             "displayAspect": "1:1"},
    "parameters": {"size": [{"time": 0, "value": 1, "active": true}], "path": {"value": 1},
                   "position": {"value": [0, 0]}, "progressive": {"value": true}},
    "views": [{"view": "2", "hold": 1, "go": 1, "in": "linear", "out": "ease"}]})");
  EXPECT_NO_THROW(CheckProject(document));
  const json flat = document.flatten();
  EXPECT_EQ(flat.size(), 22u);
  for (const auto& [pointer, value] : flat.items()) {
    json changed = document;
    changed[json::json_pointer(pointer)] = nullptr;
    EXPECT_THROW(CheckProject(changed), Error) << pointer;
  }
}

}  // namespace
}  // namespace kelto::host
