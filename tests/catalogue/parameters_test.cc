// What holds for every entry of the catalogue, and that the module's panel is made from it.
#include "catalogue/parameters.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "runtime/hfx/host.h"

namespace kelto::catalogue {
namespace {

TEST(Catalogue, KeysAreUniqueAndFindTheirParameter) {
  std::set<std::string> keys;
  for (const Parameter& parameter : kPanel) {
    EXPECT_TRUE(keys.insert(parameter.key).second) << parameter.key;
    EXPECT_EQ(Find(parameter.key), &parameter);
  }
  EXPECT_EQ(Find(""), nullptr);
  EXPECT_EQ(Find("lens"), nullptr);
}

TEST(Catalogue, EveryParameterWithAValueIsDescribedInOneLine) {
  for (const Parameter& parameter : kParameters) {
    const std::string description = parameter.description;
    ASSERT_FALSE(description.empty()) << parameter.key;
    EXPECT_EQ(description.find('\n'), description.npos) << parameter.key;
    EXPECT_NE(description.back(), '.') << parameter.key << ": options add words behind it";
  }
}

TEST(Catalogue, ListsHaveUniqueEntriesAndAWordForAllOrNone) {
  for (const Parameter& parameter : kParameters) {
    if (parameter.kind != Kind::kList) continue;
    std::set<std::string> texts, words;
    bool presetIsAWord = parameter.preset == nullptr;
    for (size_t i = 0; i < parameter.entries.size(); ++i) {
      const Entry& entry = parameter.entries[i];
      EXPECT_STREQ(parameter.texts[i], entry.text) << parameter.key;
      EXPECT_TRUE(texts.insert(entry.text).second) << parameter.key << " " << entry.text;
      if (*entry.word != 0) words.insert(entry.word);
      presetIsAWord = presetIsAWord || std::strcmp(entry.word, parameter.preset) == 0;
    }
    EXPECT_EQ(parameter.texts[parameter.entries.size()], nullptr) << parameter.key;
    EXPECT_TRUE(words.empty() || words.size() == texts.size()) << parameter.key;
    EXPECT_EQ(words.empty(), parameter.preset == nullptr) << parameter.key;
    EXPECT_TRUE(presetIsAWord) << parameter.key;
  }
}

hfx::ParamKind KindOf(Kind kind) {
  switch (kind) {
    case Kind::kGroup:
      return hfx::ParamKind::Group;
    case Kind::kList:
      return hfx::ParamKind::List;
    case Kind::kSwitch:
      return hfx::ParamKind::Boolean;
    case Kind::kNumber:
      return hfx::ParamKind::Number;
    case Kind::kPoint:
      return hfx::ParamKind::Point2D;
    default:
      return hfx::ParamKind::ColorRGB;
  }
}

TEST(Catalogue, IsTheModulesPanel) {
  std::string error;
  const auto module = hfx::Module::Load(KELTO_MODULE, &error);
  ASSERT_NE(module, nullptr) << error;
  const auto effect = hfx::Effect::Create(*module, 1, &error);
  ASSERT_NE(effect, nullptr) << error;
  const auto panel = hfx::ParametersOf(effect->instance());
  ASSERT_EQ(panel.size(), std::size(kPanel));
  for (size_t i = 0; i < std::size(kPanel); ++i) {
    const hfxParameter& shown = *panel[i];
    EXPECT_STREQ(shown.GetKeyName(), kPanel[i].key);
    EXPECT_EQ(hfx::KindOf(shown), KindOf(kPanel[i].kind)) << kPanel[i].key;
    const auto* list = dynamic_cast<const hfxPList*>(&shown);
    if (list == nullptr) continue;
    ASSERT_EQ(list->GetNumEntries(), static_cast<int32_t>(kPanel[i].entries.size()));
    for (int32_t entry = 0; entry < list->GetNumEntries(); ++entry) {
      EXPECT_STREQ(list->GetEntry(entry), kPanel[i].entries[entry].text);
    }
  }
}

std::string FileText(const char* path) {
  std::ifstream file(std::string(KELTO_SOURCE_DIR) + "/" + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Catalogue, ThePlugInsPageListsTheWords) {
  const std::string page = FileText("docs/adapters.md");
  for (const Parameter& parameter : kParameters) {
    if (parameter.preset == nullptr) continue;
    for (const Entry& entry : parameter.entries) {
      EXPECT_NE(page.find("`" + std::string(entry.word) + "`"), page.npos)
          << parameter.key << ": " << entry.word;
    }
  }
}

}  // namespace
}  // namespace kelto::catalogue
