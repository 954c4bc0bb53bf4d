#include "host/options/choices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(Choices, EachPresetIsOneOfItsWords) {
  for (const ChoiceList& list : ChoiceLists()) {
    EXPECT_NO_THROW(EntryOf(list, list.preset)) << list.option;
  }
}

TEST(Choices, WordsAndEntriesAreUniqueInTheirList) {
  for (const ChoiceList& list : ChoiceLists()) {
    std::set<std::string> words, entries;
    for (const catalogue::Entry& choice : list.choices) {
      EXPECT_TRUE(words.insert(choice.word).second) << list.option << " " << choice.word;
      EXPECT_TRUE(entries.insert(choice.text).second) << list.option << " " << choice.text;
    }
  }
}

TEST(Choices, AWordStandsForTheEffectsText) {
  EXPECT_EQ(EntryOf(ListOf("filter"), "catmull"), "Filter: BSpline Catmull");
  EXPECT_EQ(EntryOf(ListOf("outvelocity"), "hold"), "Out: Hold");
  EXPECT_EQ(EntryOf(ListOf("levels"), "601"), "Source Has 601 Levels");
}

TEST(Choices, AWrongWordIsAnsweredWithTheRightOnes) {
  try {
    EntryOf(ListOf("invelocity"), "hold");
    FAIL() << "not refused";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("linear, ease, constant"));
  }
}

}  // namespace
}  // namespace kelto::host
