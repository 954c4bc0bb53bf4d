// The effect's lists as options: from this table the command line, its help and its checks are
// made.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "catalogue/parameters.h"

namespace kelto::host {

/// An option that sets one of the effect's list parameters.
struct ChoiceList {
  const char* option;     ///< such as "--filter"
  const char* parameter;  ///< the effect's key, such as "filter"
  const char* help;       ///< what it sets, for the help text
  const char* preset;     ///< the word that holds when the option is not given
  std::span<const catalogue::Entry> choices;
};

/// Every list option, in the order of the help text.
std::span<const ChoiceList> ChoiceLists();

/// The list that sets `parameter`, which must be one of ChoiceLists().
const ChoiceList& ListOf(std::string_view parameter);

/// The text of the list entry that `word` stands for. Throws UsageError that lists the words.
std::string EntryOf(const ChoiceList& list, std::string_view word);

/// The word that stands for a list entry; empty where none does.
std::string WordFor(const ChoiceList& list, std::string_view entry);

/// The words, "linear, ease, constant".
std::string WordsOf(const ChoiceList& list);

}  // namespace kelto::host
