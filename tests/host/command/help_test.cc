// Help as people read it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const char* const kCommands[] = {"render",  "new",    "batch",      "slideshow",
                                 "inspect", "doctor", "completion", "help"};

TEST(Help, OfEveryCommandHasExamplesAndFitsTheTerminal) {
  for (const std::string command : kCommands) {
    const Outcome help = RunKelto({command, "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out, HasSubstr("Examples:\n  kelto " + command));
    std::istringstream lines(help.out);
    for (std::string line; std::getline(lines, line);) {
      // A word that is longer stays whole.
      if (line.find(' ', line.find_first_not_of(' ')) != line.npos) {
        EXPECT_LE(line.size(), 80u) << line;
      }
    }
    EXPECT_EQ(RunKelto({"help", command}).out, help.out);
  }
}

TEST(Help, GoesOnUnderTheDescription) {
  EXPECT_THAT(RunKelto({"render", "--help"}).out,
              HasSubstr("  --quality WORD              How good the film looks: low, medium, high, "
                        "best;\n                              or the codec's own number"));
}

TEST(Help, HasTopics) {
  EXPECT_THAT(RunKelto({"help", "moves"}).out, HasSubstr("the most eye-catching area"));
  EXPECT_THAT(RunKelto({"help", "easing"}).out, HasSubstr("a soft start"));
  const std::string formats = RunKelto({"help", "formats"}).out;
  for (const char* name : {"mp4", "gif", "png", "h265", "1080p", "story"}) {
    EXPECT_THAT(formats, HasSubstr("\n  " + std::string(name) + " ")) << name;
  }
  EXPECT_THAT(RunKelto({"help", "lists"}).out, HasSubstr("--each 8"));
  EXPECT_THAT(RunKelto({"help"}).out, StartsWith("Pans and zooms over photographs."));
  const Outcome none = RunKelto({"help", "cooking"});
  EXPECT_EQ(none.code, 2);
  EXPECT_EQ(none.err,
            "kelto: help cooking: choose one of moves, easing, formats, lists, or a command, such "
            "as render\n");
}

}  // namespace
}  // namespace kelto::test
