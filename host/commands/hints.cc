#include "host/commands/hints.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <numeric>

#include "host/film/formats.h"

namespace kelto::host {
namespace {

const CLI::App* CommandOf(const CLI::App& app, const std::vector<std::string>& words) {
  const auto commands = app.get_subcommands([&](const CLI::App* command) {
    return !words.empty() && command->check_name(words.front());
  });
  return commands.empty() ? nullptr : commands.front();
}

std::string Page(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* command = CommandOf(app, words);
  return "see kelto " + (command == nullptr ? "" : command->get_name() + " ") + "--help";
}

/// How many letters have to be added, removed or replaced to make one text of the other.
size_t DistanceOf(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t before = row[0]++;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t replaced = before + (a[i] == b[j] ? 0 : 1);
      before = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

/// The option of `command` whose name is most like `name`; empty where none is.
std::string LikeliestOption(const CLI::App& command, const std::string& name) {
  // Two slips of the fingers, and fewer in short names.
  size_t most = std::min<size_t>(2, (name.size() - 2) / 3) + 1;
  std::string likeliest;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& longName : option->get_lnames()) {
      const size_t distance = DistanceOf("--" + longName, name);
      if (distance >= most) continue;
      most = distance;
      likeliest = "--" + longName;
    }
  }
  return likeliest;
}

/// Of a word that no option or operand takes.
std::string OfWord(const CLI::App& command, const std::string& word) {
  if (word.starts_with("--")) {
    const std::string name = word.substr(0, word.find('='));
    const std::string likeliest = LikeliestOption(command, name);
    return "unknown option " + name +
           (likeliest.empty() ? "" : "; did you mean " + likeliest + "?");
  }
  if (word.size() > 1 && word.front() == '-') {
    return "unknown option " + word + "; if it is a file, write ./" + word;
  }
  if (command.get_name() == "render") {
    return "not expected: " + word +
           "; a film is made of one photo; kelto slideshow and kelto batch take many";
  }
  return "not expected: " + word;
}

bool EndsLikeAFilm(const std::string& name) {
  const size_t dot = name.rfind('.');
  if (dot == name.npos) return false;
  const std::string ending = name.substr(dot + 1);
  const auto kinds = FilmKinds();
  return std::any_of(kinds.begin(), kinds.end(), [&](const FilmKind& kind) {
    return ending == kind.name || (kind.otherEnding != nullptr && ending == kind.otherEnding);
  });
}

/// A file whose name passes for an option, empty where there is none.
std::string FileLikeAnOption(const std::vector<std::string>& words) {
  const auto found = std::find_if(words.begin(), words.end(), [](const std::string& word) {
    return word.size() > 2 && word[0] == '-' && word[1] != '-' && word[1] != 'o' &&
           std::isalpha(static_cast<unsigned char>(word[1])) != 0 && word.find('.') != word.npos;
  });
  return found == words.end() ? "" : *found;
}

/// The file behind --out, which many commands take for what -o is here; empty where there is none.
std::string FileBehindOut(const std::vector<std::string>& words) {
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--out" && i + 1 < words.size() && EndsLikeAFilm(words[i + 1])) {
      return words[i + 1];
    }
    if (words[i].starts_with("--out=") && EndsLikeAFilm(words[i])) return words[i].substr(6);
  }
  return "";
}

}  // namespace

std::string FaultText(const CLI::App& app, const std::vector<std::string>& words,
                      const CLI::ParseError& error) {
  const std::string page = Page(app, words);
  if (const std::string film = FileBehindOut(words); !film.empty()) {
    return "--out " + film +
           ": --out says how the move leaves the first view; name the film with -o " + film;
  }
  if (const std::string file = FileLikeAnOption(words); !file.empty()) {
    return "unknown option " + file + "; if it is a file, write ./" + file + "; " + page;
  }
  // The parser would miss a command, which may well stand behind it.
  if (!words.empty() && words.front().starts_with('-')) {
    return OfWord(app, words.front()) + "; " + page;
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const std::vector<std::string> extras = app.remaining(true);
    const CLI::App* command = CommandOf(app, words);
    if (!extras.empty())
      return OfWord(command == nullptr ? app : *command, extras.front()) + "; " + page;
  }
  return std::string(error.what()) + "; " + page;
}

}  // namespace kelto::host
