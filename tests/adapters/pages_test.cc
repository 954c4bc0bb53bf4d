// The pages in video editors, held against the plug-in's table and the effect's lists.
#include <gtest/gtest.h>

#include <set>

#include "adapters/pages/controls.h"
#include "adapters/pages/kdenlive.h"
#include "adapters/pages/shotcut.h"
#include "host/options/choices.h"
#include "host/options/motion_law.h"

namespace kelto::pages {
namespace {

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::string> WordsOf(const Control& control) {
  std::vector<std::string> words;
  for (const Word& word : control.words) words.push_back(word.word);
  return words;
}

TEST(EditorPages, OfferEveryWordOfTheEffectsListsInTheirOrder) {
  size_t lists = 0;
  for (const Control& control : Controls()) {
    const char* list = control.parameter().list;
    if (list == nullptr) continue;
    ++lists;
    std::vector<std::string> words;
    for (const auto& choice : host::ListOf(list).choices) words.emplace_back(choice.word);
    EXPECT_EQ(WordsOf(control), words) << control.parameter().name;
  }
  EXPECT_EQ(lists, host::ChoiceLists().size());
}

TEST(EditorPages, DefaultsAreAmongWhatTheyOffer) {
  for (const Control& control : Controls()) {
    const frei0r::Parameter& parameter = control.parameter();
    if (control.widget == Widget::kSlider) {
      EXPECT_FALSE(parameter.isText) << parameter.name;
      EXPECT_LE(control.least, parameter.number * kPercent) << parameter.name;
      EXPECT_GE(control.most, parameter.number * kPercent) << parameter.name;
      EXPECT_GE(control.least, parameter.lower * kPercent) << parameter.name;
      EXPECT_LE(control.most, parameter.upper * kPercent) << parameter.name;
    } else {
      EXPECT_TRUE(parameter.isText) << parameter.name;
    }
    if (control.widget != Widget::kChoice) continue;
    const auto words = WordsOf(control);
    EXPECT_NE(std::find(words.begin(), words.end(), parameter.text), words.end()) << parameter.name;
  }
}

TEST(EditorPages, EveryMotionLawIsOffered) {
  for (const Control& control : Controls()) {
    if (control.index != frei0r::kMotion) continue;
    for (const Word& word : control.words) {
      if (word.word.empty()) continue;
      EXPECT_NO_THROW(host::ParseMotionLaw(word.word)) << word.word;
    }
    EXPECT_EQ(control.words.size(), 4u);  // and the plug-in's own choice
  }
}

TEST(EditorPages, ShowEachParameterOnceWithTextsInBothLanguages) {
  std::set<int> shown;
  for (const Control& control : Controls()) {
    const char* name = control.parameter().name;
    EXPECT_TRUE(shown.insert(control.index).second) << name;
    for (const Language language : {Language::kEnglish, Language::kGerman}) {
      EXPECT_STRNE(control.name.In(language), "") << name;
      EXPECT_STRNE(control.hint.In(language), "") << name;
      for (const Word& word : control.words) {
        EXPECT_STRNE(word.name.In(language), "") << name;
        // Kdenlive separates shown words by commas.
        EXPECT_FALSE(Holds(word.name.In(language), ",")) << name;
      }
    }
  }
}

TEST(KdenlivePage, HasTheFactsOfEachParameter) {
  const std::string page = KdenlivePage(Language::kEnglish);
  EXPECT_TRUE(Holds(page, "tag=\"frei0r.kelto_pan_zoom\""));
  EXPECT_TRUE(Holds(page, "type=\"url\" name=\"filename\""));
  EXPECT_TRUE(Holds(page,
                    "type=\"animated\" name=\"zoom\" default=\"1\" min=\"10\" max=\"2000\" "
                    "factor=\"100\""));
  EXPECT_TRUE(Holds(page,
                    "type=\"animated\" name=\"progress\" default=\"0\" min=\"0\" "
                    "max=\"100\" factor=\"100\""));
  // A colour would replace the video below.
  EXPECT_TRUE(Holds(page, "name=\"background\" default=\"video\""));
  for (const Control& control : Controls()) {
    EXPECT_TRUE(Holds(page, std::string("name=\"") + control.parameter().name + "\""));
  }
}

TEST(KdenlivePage, DiffersByLanguageInWhatIsSeenAlone) {
  const std::string german = KdenlivePage(Language::kGerman);
  EXPECT_TRUE(Holds(german, "Fortschritt"));
  const auto attributes = [](const std::string& page) {
    std::string found;
    for (size_t at = 0; (at = page.find("<parameter ", at)) != std::string::npos; ++at) {
      found += page.substr(at, page.find('>', at) - at);
    }
    return found;
  };
  EXPECT_EQ(attributes(german), attributes(KdenlivePage(Language::kEnglish)));
}

TEST(ShotcutPage, KeysWhatHasASliderAndBracesMatch) {
  const std::string meta = ShotcutMeta(), page = ShotcutPage();
  for (const std::string& text : {meta, page}) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '{'), std::count(text.begin(), text.end(), '}'));
    EXPECT_EQ(std::count(text.begin(), text.end(), '('), std::count(text.begin(), text.end(), ')'));
  }
  for (const Control& control : Controls()) {
    const std::string name = control.parameter().name;
    EXPECT_EQ(Holds(meta, "property: '" + name + "'"), control.widget == Widget::kSlider) << name;
    EXPECT_TRUE(Holds(page, "filter.get") && Holds(page, "'" + name + "'")) << name;
  }
  EXPECT_TRUE(Holds(meta, "mlt_service: 'frei0r.kelto_pan_zoom'"));
}

}  // namespace
}  // namespace kelto::pages
