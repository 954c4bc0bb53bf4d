// Product texts are plain technical English: phrases that kept coming back are refused, with what
// to write instead. Comments count, since they are read as often as messages.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace kelto {
namespace {

namespace fs = std::filesystem;

struct Phrase {
  const char* words;  ///< in lower case, with single spaces
  const char* instead;
};

constexpr Phrase kPhrases[] = {
    {"tells", "reports, says"},
    {"told", "is reported, gets"},
    {"on purpose", "because ..."},
    {"wish", "a command, a request"},
    {"wishes", "commands, requests"},
    {"complaint", "a diagnostic, an error"},
    {"complaints", "diagnostics, errors"},
    {"whole number", "an integer"},
    {"whole numbers", "integers, fixed point"},
    {"out of the ordinary", "the most eye-catching"},
    {"asks for what cannot be", "invalid command line"},
    {"is no list", "is not a list"},
    {"is no json", "is not JSON"},
    {"there already", "already exists"},
    {"want of memory", "out of memory"},
    {"turned rows", "transposed rows"},
    {"picks pixels", "nearest neighbour"},
    {"25 a second", "25 fps"},
    {"its name when it is whole", "output appears only when complete"},
};

bool IsText(const fs::path& path) {
  for (const char* extension : {".cc", ".h", ".md", ".json", ".in", ".txt", ".sh"}) {
    if (path.extension() == extension) return true;
  }
  return false;
}

/// What the project ships or asks people to read.
std::vector<fs::path> ProductTexts() {
  const fs::path root(KELTO_SOURCE_DIR);
  std::vector<fs::path> files = {root / "README.md", root / "SECURITY.md", root / "CHANGELOG.md",
                                 root / "CONTRIBUTING.md", root / "dev"};
  for (const char* folder : {"adapters", "catalogue", "cmake",    "curves", "deep",   "docs",
                             "editor",   "examples",  "framing",  "host",   "image",  "keyframes",
                             "motion",   "packaging", "platform", "plugin", "render", "resample",
                             "runtime",  "state",     "targets",  "tools"}) {
    if (!fs::exists(root / folder)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      if (entry.is_regular_file() && IsText(entry.path())) files.push_back(entry.path());
    }
  }
  return files;
}

/// A text in lower case, with single spaces for what may divide a phrase: line breaks, the slashes
/// of comments and the quotation marks of literals.
std::string WordsOf(std::istream& text) {
  std::string words = " ";
  for (char c; text.get(c);) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (std::string_view(" \n/#\"").find(c) == std::string_view::npos) {
      words += c;
    } else if (words.back() != ' ') {
      words += ' ';
    }
  }
  return words + ' ';
}

/// Where `words` stand in `text` as words of their own; npos where they do not.
size_t Find(const std::string& text, const std::string& words) {
  const auto isLetter = [&](size_t at) {
    return at < text.size() && ((text[at] >= 'a' && text[at] <= 'z') || text[at] == '_');
  };
  for (size_t at = 0; (at = text.find(words, at)) != text.npos; ++at) {
    if (!isLetter(at - 1) && !isLetter(at + words.size())) return at;
  }
  return text.npos;
}

TEST(Words, TextsAreFound) { EXPECT_GT(ProductTexts().size(), 200u); }

TEST(Words, NoProductTextHasAPhraseThatIsRefused) {
  for (const fs::path& path : ProductTexts()) {
    std::ifstream file(path);
    const std::string words = WordsOf(file);
    for (const Phrase& phrase : kPhrases) {
      const size_t at = Find(words, phrase.words);
      if (at == words.npos) continue;
      ADD_FAILURE() << path.string() << ": \"" << words.substr(at < 40 ? 0 : at - 40, 100)
                    << "\"\nwrite instead of \"" << phrase.words << "\": " << phrase.instead;
    }
  }
}

}  // namespace
}  // namespace kelto
