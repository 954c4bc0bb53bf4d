#include "host/commands/line_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

#include "host/base/error.h"
#include "host/commands/film_options.h"

namespace kelto::host {
namespace {

template <typename Words>
void Parse(CLI::App& app, Words words) {
  app.set_help_flag();
  app.allow_windows_style_options(false);
  try {
    app.parse(words);
  } catch (const CLI::ExtrasError&) {
    throw UsageError(app.remaining().front() +
                     " is no option of a picture; those are under Picture in kelto slideshow "
                     "--help");
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
}

std::set<std::string> NamesIn(const std::vector<std::string>& words) {
  std::set<std::string> names;
  for (const std::string& word : words) {
    if (word.starts_with("--")) names.insert(word);
  }
  return names;
}

/// The command line's words with a line's in place of theirs.
std::vector<std::string> Joined(const std::vector<std::string>& common,
                                const std::vector<std::string>& line) {
  std::set<std::string> replaced = NamesIn(line);
  // Of these, a picture has those of one place.
  const std::set<std::string> views = {"--from",      "--to",           "--view", "--hold",
                                       "--go",        "--move",         "--fit",  "--amount",
                                       "--max-speed", "--max-zoom-rate"};
  const bool hasViews = std::any_of(replaced.begin(), replaced.end(), [](const auto& name) {
    return name == "--from" || name == "--to" || name == "--view" || name == "--move";
  });
  if (hasViews) replaced.insert(views.begin(), views.end());
  if (replaced.count("--ease") > 0) replaced.insert({"--in", "--out"});
  if (replaced.count("--in") + replaced.count("--out") > 0) replaced.insert("--ease");
  if (replaced.count("--seconds") > 0) replaced.insert({"--frames", "--fit-audio"});
  // Both say what is beside the photo, but for --beside colour.
  const auto beside = std::find(line.begin(), line.end(), "--beside");
  const bool blurs = beside != line.end() && beside + 1 != line.end() && beside[1] == "blur";
  if (replaced.count("--background") > 0) replaced.insert("--beside");
  if (blurs) replaced.insert("--background");
  std::vector<std::string> joined;
  bool kept = true;
  for (const std::string& word : common) {
    if (word.starts_with("--")) kept = replaced.count(word) == 0;
    if (kept) joined.push_back(word);
  }
  joined.insert(joined.end(), line.begin(), line.end());
  return joined;
}

PictureOptions Read(const ListedPicture& picture, const std::vector<std::string>& common,
                    LineUse use) {
  PictureOptions options;
  CLI::App line;
  PlanOptions own;
  DeclarePicture(line, own);
  if (use == LineUse::kShow) {
    line.add_option("--each", options.each);
    line.add_option("--fade", options.fade);
  } else {
    line.add_option("--seconds", own.seconds);
  }
  Parse(line, picture.options);
  std::vector<std::string> words = Joined(common, WordsGiven(line));
  for (const char* shows : {"--each", "--fade"}) {
    const auto found = std::find(words.begin(), words.end(), shows);
    if (found != words.end()) words.erase(found, found + 2);
  }
  // Read as one command line, which puts them in the order that records have them in.
  CLI::App whole;
  FilmOptions film;
  DeclareFilm(whole, film, "");
  DeclareDepth(whole, film);
  DeclarePlan(whole, options.plan);
  std::reverse(words.begin(), words.end());
  Parse(whole, words);
  options.words = WordsGiven(whole);
  return options;
}

}  // namespace

PictureOptions ReadLineOptions(const ListedPicture& picture, const PictureOptions& common,
                               LineUse use) {
  if (picture.options.empty()) return common;
  return AtPlaceOf(picture, [&] { return Read(picture, common.words, use); });
}

}  // namespace kelto::host
