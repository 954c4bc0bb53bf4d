#include "host/options/choices.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "host/base/error.h"
#include "host/base/texts.h"

namespace kelto::host {
namespace {

constexpr ChoiceList Option(const char* option, const char* key) {
  const catalogue::Parameter& parameter = *catalogue::Find(key);
  return {option, key, parameter.description, parameter.preset, parameter.entries};
}

constexpr ChoiceList kLists[] = {
    Option("--in", key::kInVelocity), Option("--out", key::kOutVelocity),
    Option("--path", key::kPath),     Option("--filter", key::kFilter),
    Option("--levels", key::kLevels), Option("--display", key::kDisplay),
};

}  // namespace

std::span<const ChoiceList> ChoiceLists() { return kLists; }

const ChoiceList& ListOf(std::string_view parameter) {
  return *std::find_if(std::begin(kLists), std::end(kLists),
                       [&](const ChoiceList& list) { return list.parameter == parameter; });
}

std::string EntryOf(const ChoiceList& list, std::string_view word) {
  for (const catalogue::Entry& choice : list.choices) {
    if (choice.word == word) return choice.text;
  }
  throw UsageError("choose one of " + WordsOf(list));
}

std::string WordFor(const ChoiceList& list, std::string_view entry) {
  for (const catalogue::Entry& choice : list.choices) {
    if (choice.text == entry) return choice.word;
  }
  return "";
}

std::string WordsOf(const ChoiceList& list) {
  std::vector<const char*> words;
  for (const catalogue::Entry& choice : list.choices) words.push_back(choice.word);
  return Joined(words);
}

}  // namespace kelto::host
