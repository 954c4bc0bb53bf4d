// What the command tells of itself: to people, to shells and in its manual.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const char* const kCommands[] = {"render", "batch", "slideshow", "inspect", "doctor"};

/// Every option that a help text lists at the beginning of a line.
std::set<std::string> OptionsIn(const std::string& help) {
  std::set<std::string> options;
  const std::regex line("(^|\n)  (-[a-zA-Z],)?(--[a-z-]+)");
  for (std::sregex_iterator i(help.begin(), help.end(), line), end; i != end; ++i) {
    options.insert((*i)[3]);
  }
  return options;
}

/// Runs a script that is told the completions in the file "$1".
class Completion : public testing::Test {
 protected:
  std::string Script(const std::string& shell) {
    const Outcome outcome = RunKelto({"completion", shell});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    std::ofstream(folder_ / shell) << outcome.out;
    return folder_ / shell;
  }
  /// What bash offers for a line of words, the last of them unfinished.
  std::set<std::string> BashOffers(const std::string& words) {
    const Outcome outcome =
        RunShell("bash -c '. " + Script("bash") + "; COMP_WORDS=(kelto " + words +
                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kelto; printf \"%s\\n\" "
                 "\"${COMPREPLY[@]}\"'");
    EXPECT_EQ(outcome.err, "");
    std::set<std::string> offers;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty()) offers.insert(line);
    }
    return offers;
  }

  TempFolder folder_;
};

TEST_F(Completion, InBashOffersCommandsOptionsAndWords) {
  EXPECT_THAT(BashOffers("re"), testing::ElementsAre("render"));
  EXPECT_THAT(BashOffers("render photo.jpg --fil"), testing::ElementsAre("--filter"));
  EXPECT_THAT(BashOffers("render --filter ul"), testing::ElementsAre("ultra"));
  EXPECT_THAT(BashOffers("batch --format mp"), testing::ElementsAre("mp4"));
  EXPECT_THAT(BashOffers("render --size s"), testing::ElementsAre("square", "story"));
  EXPECT_THAT(BashOffers("render --seconds \"\""), IsEmpty());
  EXPECT_THAT(BashOffers("render --fields p"), testing::ElementsAre("progressive"));
}

TEST_F(Completion, InBashOffersWordsBehindAnEqualsSign) {
  EXPECT_THAT(BashOffers("render --filter = ul"), testing::ElementsAre("ultra"));
  EXPECT_THAT(BashOffers("render --fit ="), testing::ElementsAre("fill", "whole"));
}

TEST_F(Completion, InBashQuotesNamesOfFiles) {
  std::ofstream(folder_ / "two words.jpg") << "x";
  std::ofstream(folder_ / "keys") << ". ./bash\nkelto() { printf '<%s>' \"$@\"; }\n"
                                  << "kelto render two\t -o x --fit=w\t --audio=tw\t\nexit\n";
  Script("bash");
  const Outcome outcome =
      RunShell("cd '" + (folder_ / "") + "' && INPUTRC=/dev/null bash --norc -i < keys");
  EXPECT_EQ(outcome.out, "<render><two words.jpg><-o><x><--fit=whole><--audio=two words.jpg>")
      << outcome.err;
}

TEST_F(Completion, InZshOffersAgainWhatMayBeGivenAgain) {
  const std::string script = BytesOf(Script("zsh"));
  EXPECT_THAT(script, HasSubstr("'*--view["));
  EXPECT_THAT(script, HasSubstr("'--from["));
}

TEST_F(Completion, InEveryShellKnowsEveryOption) {
  for (const char* shell : {"bash", "zsh", "fish"}) {
    const std::string script = BytesOf(Script(shell));
    for (const char* command : kCommands) {
      for (const std::string& option : OptionsIn(RunKelto({command, "--help"}).out)) {
        // fish has the names without their dashes.
        const std::string name = shell == std::string("fish") ? "-l " + option.substr(2) : option;
        EXPECT_THAT(script, HasSubstr(name)) << shell << ", " << command;
      }
    }
  }
}

TEST_F(Completion, ScriptsAreWhatTheShellsRead) {
  for (const char* shell : {"bash", "zsh", "fish"}) {
    const std::string script = Script(shell);
    const Outcome outcome = RunShell(std::string(shell) + " -n " + script);
    EXPECT_EQ(outcome.code, 0) << shell;
    EXPECT_EQ(outcome.err, "") << shell;
  }
}

TEST_F(Completion, InFishOffersWords) {
  const Outcome outcome = RunShell("HOME=" + (folder_ / "") + " fish -N -c 'source " +
                                   Script("fish") + "; complete -C \"kelto render --filter ul\"'");
  EXPECT_THAT(outcome.out, HasSubstr("ultra"));
}

TEST_F(Completion, ForOtherShellsIsMisuse) { EXPECT_EQ(RunKelto({"completion", "csh"}).code, 2); }

/// The page of a command, or of the program, with plain dashes.
std::string Page(const std::string& command = "") {
  std::vector<std::string> words = {"completion", "man"};
  if (!command.empty()) words.push_back(command);
  return std::regex_replace(RunKelto(words).out, std::regex("\\\\-"), "-");
}

TEST(ManPage, OfACommandHasEveryOptionThatItsHelpHas) {
  const std::string program = Page();
  for (const char* command : kCommands) {
    const std::set<std::string> options = OptionsIn(RunKelto({command, "--help"}).out);
    EXPECT_GE(options.size(), 2u) << command;
    const std::string page = Page(command);
    EXPECT_THAT(page, HasSubstr(std::string(".SH NAME\nkelto-") + command + " - "));
    for (const std::string& option : options) {
      EXPECT_THAT(page, HasSubstr("\\fB" + option + "\\fR")) << command;
    }
    EXPECT_THAT(page, HasSubstr(std::string("\nkelto ") + command)) << "an example";
    EXPECT_THAT(program, HasSubstr(std::string("\\fBkelto-") + command + "\\fR(1)"));
  }
}

TEST(ManPage, IsOneThatManReadsWithoutWarnings) {
  const TempFolder folder;
  std::ofstream(folder / "kelto.1") << RunKelto({"completion", "man"}).out;
  std::string pages = folder / "kelto.1";
  for (const std::string command : kCommands) {
    const std::string page = folder / ("kelto-" + command + ".1");
    std::ofstream(page) << RunKelto({"completion", "man", command}).out;
    pages += " " + page;
  }
  const Outcome outcome = RunShell("mandoc -Tlint -Wwarning " + pages);
  EXPECT_EQ(outcome.code, 0) << outcome.out;
}

TEST(ManPage, OfNoCommandIsMisuse) {
  const Outcome outcome = RunKelto({"completion", "man", "bake"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err, HasSubstr("completion man bake: there is no such command; choose one of "
                                     "render, "));
  EXPECT_EQ(RunKelto({"completion", "bash", "render"}).code, 2);
}

TEST(Doctor, TellsWhatThisMachineReadsAndWrites) {
  const Outcome outcome = RunKelto({"doctor"});
  EXPECT_EQ(outcome.code, 0) << outcome.out;
  EXPECT_EQ(outcome.err, "");
  for (const char* line :
       {"instruction set: ", "module: ", ", renders\n", "  JPEG: yes\n", "  PNG: yes\n",
        "  TIFF: yes\n", "  WebP: yes\n", "  GIF: yes\n", "  BMP: yes\n", "  TGA: yes\n",
        "  h264 in mp4, by libx264: yes\n", "  png: yes\n", "  y4m: yes\n"}) {
    EXPECT_THAT(outcome.out, HasSubstr(line));
  }
}

TEST(Doctor, TellsTheVersionsOfAllLibraries) {
  std::vector<std::string> names{"libavformat", "libpng", "giflib"};
#if defined(KELTO_OPENCV)
  names.emplace_back("OpenCV");
#endif
#if defined(KELTO_CAIRO)
  names.emplace_back("Cairo");
#endif
#if defined(KELTO_SDL)
  names.emplace_back("SDL");
#endif
  const std::string version = RunKelto({"--version"}).out;
  for (const std::string& name : names) {
    EXPECT_THAT(version, testing::ContainsRegex("\n" + name + " [0-9]+\\.[0-9]+"));
  }
}

TEST(Doctor, FailsWhereNothingCanBeRendered) {
  const Outcome outcome = RunKelto({"doctor", "--module", "/none.hfx"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.out, HasSubstr("module: no: --module /none.hfx: there is no such file"));
  EXPECT_THAT(outcome.out, HasSubstr("cannot render"));
}

}  // namespace
}  // namespace kelto::test
