// Names that would have a terminal do something are shown escaped, wherever they come from.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/base/shown_text.h"
#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Clears the screen, rings, goes back over the line in 8 bits and in UTF-8, and forges a message.
const std::string kEvil = "a\x1b[2J\x07\x7f\x9b\xc2\x9b\xe2\x80\xae\nkelto: done.jpg";

class Names : public testing::Test {
 protected:
  /// Whether a terminal shows `text` and does nothing else.
  static bool IsHarmless(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      if (host::ShownText(line) != line) return false;
    }
    return true;
  }
  /// `outcome` without the last line, where that only says that nothing is left to be shown.
  static Outcome WithoutEnd(Outcome outcome) {
    const std::string end = "kelto: none of the pictures can be shown\n";
    if (outcome.err.ends_with(end)) outcome.err.resize(outcome.err.size() - end.size());
    return outcome;
  }
  static void ExpectOneHarmlessLine(const Outcome& whole) {
    const Outcome outcome = WithoutEnd(whole);
    EXPECT_NE(outcome.code, 0);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_TRUE(IsHarmless(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(R"(a\x1b[2J\x07\x7f\x9b\u009b\u202e\nkelto: done.jpg)"));
  }

  TempFolder folder_;
};

TEST_F(Names, OnTheCommandLineAreShownEscaped) {
  ExpectOneHarmlessLine(Render(folder_ / kEvil, folder_ / "film.mp4"));
  WritePng(folder_ / "x.png", MakePicture(8, 8, [](int, int) { return Rgb{1, 2, 3}; }));
  ExpectOneHarmlessLine(RunKelto({"render", folder_ / "x.png", "-o", folder_ / kEvil + ".avi"}));
  ExpectOneHarmlessLine(RunKelto({kEvil}));
  ExpectOneHarmlessLine(RunKelto({"render", "x.jpg", "-o", "x.mp4", "--" + kEvil}));
  ExpectOneHarmlessLine(RunKelto({"inspect", folder_ / kEvil}));
}

TEST_F(Names, InFoldersAreShownEscaped) {
  fs::create_directory(folder_ / "photos");
  std::ofstream(folder_ / "photos/" + kEvil) << "no picture";
  ExpectOneHarmlessLine(RunKelto({"batch", folder_ / "photos", "-o", folder_ / "films"}));
  ExpectOneHarmlessLine(RunKelto({"slideshow", folder_ / "photos", "-o", folder_ / "show.mp4"}));
}

TEST_F(Names, InListsAndProjectsAreShownEscaped) {
  const std::string name = "a\x1b[2J\x07\x7f\x9b.jpg";
  std::ofstream(folder_ / "list.txt") << name << "\n";
  nlohmann::json project{{"image", "a\x1b\n\xc2\x9b.jpg"}};
  std::ofstream(folder_ / "project.json") << project.dump();
  for (const Words& words :
       {Words{"slideshow", folder_ / "list.txt", "-o", folder_ / "show.mp4"},
        Words{"batch", folder_ / "list.txt", "-o", folder_ / "films"},
        Words{"render", folder_ / "project.json", "-o", folder_ / "film.mp4"}}) {
    const Outcome outcome = WithoutEnd(RunKelto(words));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_TRUE(IsHarmless(outcome.err)) << outcome.err;
    // In a project's values controls are a fault of their own.
    EXPECT_THAT(outcome.err, testing::AnyOf(HasSubstr(R"(a\x1b)"), HasSubstr(R"(a\u001b)")));
  }
}

TEST_F(Names, StayWhatTheyAreInEvents) {
  const std::string name = folder_ / "a\x1b\n\x7f\xc2\x9b\xe2\x80\xae.jpg";
  const Outcome outcome = RunKelto({"render", name, "-o", folder_ / "film.mp4", "--json"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsHarmless(outcome.err)) << outcome.err;
  const auto event = nlohmann::json::parse(outcome.err);
  EXPECT_THAT(event["text"].get<std::string>(), HasSubstr(name + ": there is no such file"));
}

TEST_F(Names, AreHarmlessOnTheStandardOutput) {
  fs::create_directory(folder_ / "photos");
  const std::string photo = folder_ / "photos/a\x1b[2J\x7f\xc2\x9b.png";
  WritePng(photo, MakePicture(8, 8, [](int, int) { return Rgb{1, 2, 3}; }));
  const Outcome tasks = RunKelto({"batch", folder_ / "photos", "-o", folder_ / "films", "--plan",
                                  "--size", "32x32", "--frames", "2", "--format", "y4m"});
  EXPECT_TRUE(IsHarmless(tasks.out)) << tasks.out;
  fs::create_directory(folder_ / "films");
  EXPECT_EQ(RunShell(tasks.out).code, 0) << tasks.out;
  EXPECT_TRUE(fs::exists(folder_ / "films/a\x1b[2J\x7f\xc2\x9b.y4m"));
  // Projects take no names with controls in them.
  const std::string turned = folder_ / "a\xe2\x80\xae.png";
  fs::copy_file(photo, turned);
  const Outcome project = RunKelto({"new", turned, "-o", "-"});
  EXPECT_TRUE(IsHarmless(project.out)) << project.out;
  EXPECT_THAT(nlohmann::json::parse(project.out)["image"].get<std::string>(),
              HasSubstr("a\xe2\x80\xae.png"));
  const Outcome frames = RunKelto({"inspect", photo, "--frames", "2", "--json"});
  EXPECT_TRUE(IsHarmless(frames.out)) << frames.out;
  EXPECT_EQ(nlohmann::json::parse(frames.out)["photo"], photo);
}

}  // namespace
}  // namespace kelto::test
