// What the user and other programs see while films are made.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;

/// Frames of a film that takes more than a second on any machine; with the sanitizers each takes
/// thirty times as long, and a busy machine that long again.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kFrames = 60;
#else
constexpr int kFrames = 2000;
#endif

/// A terminal that a command can be started on.
class Terminal {
 public:
  Terminal() : own_(posix_openpt(O_RDWR | O_NOCTTY)) {
    grantpt(own_);
    unlockpt(own_);
    // Stays open so that there is something to read before and after the command.
    other_ = open(Name().c_str(), O_RDWR | O_NOCTTY);
  }
  ~Terminal() {
    close(other_);
    close(own_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  std::string Name() const { return ptsname(own_); }
  void SetColumns(int columns) const {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    ioctl(own_, TIOCSWINSZ, &size);
  }
  /// What was written so far.
  std::string Seen() const {
    std::string text;
    char bytes[4096];
    pollfd ready{own_, POLLIN, 0};
    while (poll(&ready, 1, 100) > 0) {
      const ssize_t count = read(own_, bytes, sizeof bytes);
      if (count <= 0) break;
      text.append(bytes, static_cast<size_t>(count));
    }
    return text;
  }

 private:
  int own_, other_;
};

class Report : public testing::Test {
 protected:
  Report() {
    WritePng(photo_, MakePicture(64, 64, [](int x, int y) {
               return Rgb{uint8_t(4 * x), uint8_t(4 * y), 0};
             }));
  }
  static std::vector<Json> EventsOf(const std::string& text) {
    std::vector<Json> events;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) events.push_back(Json::parse(line));
    return events;
  }

  std::string SeenOfAFilm(const Terminal& terminal);

  TempFolder photos_, films_;
  const std::string photo_ = photos_ / "photo.png";
};

/// What a terminal gets to see while a film is made that takes a while. Nobody wants the film,
/// which would fill small disks.
std::string Report::SeenOfAFilm(const Terminal& terminal) {
  Command command({"render", photo_, "-o", "-", "--format", "y4m", "--size", "640x360", "--frames",
                   std::to_string(kFrames), "--filter", "ultra", "--to", "2", "--jobs", "2"},
                  "/dev/null", terminal.Name());
  std::string seen;
  for (siginfo_t ended{}; ended.si_pid == 0; seen += terminal.Seen()) {
    waitid(P_PID, static_cast<id_t>(command.Process()), &ended, WNOHANG | WNOWAIT | WEXITED);
  }
  EXPECT_EQ(command.Wait().code, 0);
  return seen + terminal.Seen();
}

TEST_F(Report, OnATerminalIsALineThatGoesAway) {
  setenv("TERM", "xterm", 1);
  const std::string seen = SeenOfAFilm(Terminal());
  EXPECT_THAT(seen, testing::ContainsRegex("\r\\[=* *\\] +[0-9]+ %  frame [0-9]+ of " +
                                           std::to_string(kFrames) +
                                           "  "
                                           "[0-9.]+/s  0:[0-9]+ left"));
  EXPECT_TRUE(seen.ends_with("\r\x1b[K")) << "the line is erased at the end";
  EXPECT_EQ(seen.find('\n'), seen.npos);
}

TEST_F(Report, OfABatchBeginsBeforeItsFirstFilmIsDone) {
  setenv("TERM", "xterm", 1);
  const Terminal terminal;
  const Words words{"batch",  photo_,    "-o",       films_ / "", "--format", "y4m",
                    "--size", "640x360", "--frames", "60",        "--filter", "ultra"};
  EXPECT_EQ(Command(words, "", terminal.Name()).Wait().code, 0);
  const std::string seen = terminal.Seen();
  EXPECT_THAT(seen, testing::HasSubstr("\r[                    ]   0 %  film 0 of 1\x1b[K"));
  EXPECT_THAT(seen, testing::ContainsRegex("\r\\[=+ +\\] +[0-9]+ %  film 0 of 1  [0-9.]+/"));
}

TEST_F(Report, OnANarrowTerminalIsALineThatFits) {
  setenv("TERM", "xterm", 1);
  Terminal terminal;
  terminal.SetColumns(20);
  EXPECT_THAT(SeenOfAFilm(terminal), testing::ContainsRegex("\r\\[.{18}\x1b\\[K"));
}

TEST_F(Report, OnATerminalThatCannotDrawIsPlain) {
  setenv("TERM", "dumb", 1);
  EXPECT_EQ(SeenOfAFilm(Terminal()).find('\x1b'), std::string::npos);
}

TEST_F(Report, OnATerminalIsWhatWasMadeAtTheEnd) {
  setenv("TERM", "xterm", 1);
  const Terminal terminal;
  const auto seen = [&](const Words& words) {
    EXPECT_EQ(Command(words, "", terminal.Name()).Wait().code, 0);
    return terminal.Seen();
  };
  EXPECT_THAT(seen({"render", photo_, "-o", films_ / "f.mp4", "--size", "96x64", "--frames", "30"}),
              testing::ContainsRegex("kelto: " + (films_ / "f.mp4") +
                                     ": 1.2 s, 96x64, [0-9.]+ kB, in [0-9.]+ s"));
  EXPECT_THAT(
      seen({"render", photo_, "-o", films_ / "f%d.png", "--size", "96x64", "--frames", "3"}),
      testing::ContainsRegex("f%d.png: 3 pictures, 96x64, in [0-9.]+ s"));
  EXPECT_THAT(seen({"slideshow", photo_, photo_, "-o", films_ / "s.yuyv", "--size", "96x64",
                    "--each", "0.2", "--fade", "0"}),
              testing::ContainsRegex("s.yuyv: 0.4 s, 96x64, 122.9 kB, in [0-9.]+ s"));
}

TEST_F(Report, ElsewhereShortWorkIsSilent) { EXPECT_EQ(Render(photo_, films_ / "f.mp4").err, ""); }

TEST_F(Report, InJsonIsAnObjectALine) {
  const Outcome outcome =
      RunKelto({"render", photo_, "-o", "-", "--format", "y4m", "--json", "--frames",
                std::to_string(kFrames), "--size", "960x540", "--filter", "ultra", "--jobs", "1"},
               "/dev/null");
  EXPECT_EQ(outcome.code, 0);
  const std::vector<Json> events = EventsOf(outcome.err);
  ASSERT_GE(events.size(), 3u) << outcome.err;
  EXPECT_EQ(events.front()["event"], "start");
  EXPECT_EQ(events.front()["frames"], kFrames);
  EXPECT_EQ(events.back()["event"], "done");
  EXPECT_EQ(events.back()["output"], "-");
  int before = 0;
  for (size_t i = 1; i + 1 < events.size(); ++i) {
    EXPECT_EQ(events[i]["event"], "progress");
    EXPECT_GT(events[i]["done"].get<int>(), before);
    EXPECT_EQ(events[i]["total"], kFrames);
    EXPECT_GT(events[i]["perSecond"].get<double>(), 0.0);
    EXPECT_GE(events[i]["secondsLeft"].get<double>(), 0.0);
    before = events[i]["done"];
  }
}

TEST_F(Report, InJsonTellsFailuresToo) {
  const std::string odd = photos_ / "gr\xfc\xdf.jpg";  // no UTF-8
  std::ofstream(odd) << "no picture";
  const Outcome outcome = Render(odd, films_ / "f.mp4", {"--json"});
  EXPECT_EQ(outcome.code, 1);
  const std::vector<Json> events = EventsOf(outcome.err);
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(events.back()["event"], "error");
  EXPECT_THAT(events.back()["text"].get<std::string>(), HasSubstr("cannot be read as a picture"));
}

TEST_F(Report, InJsonTellsFaultsOfTheCommandLineToo) {
  for (const Words& faulty : {Words{"--siz", "64x64"}, {"--jobs"}, {"--bogus"}, {"--from", "x"}}) {
    Words words{"render", photo_, "-o", films_ / "f.mp4", "--json"};
    words.insert(words.end(), faulty.begin(), faulty.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 2);
    const std::vector<Json> events = EventsOf(outcome.err);
    ASSERT_EQ(events.size(), 1u) << outcome.err;
    EXPECT_EQ(events[0]["event"], "error");
    EXPECT_THAT(events[0]["text"].get<std::string>(), HasSubstr(faulty[0]));
  }
  // There they are names, and what --json of other commands prints is no report.
  EXPECT_TRUE(IsOneLine(RunKelto({"render", "--", "a.jpg", "--json"}).err));
  EXPECT_TRUE(IsOneLine(RunKelto({"inspect", photo_, "--json", "--bogus"}).err));
}

TEST_F(Report, OnAClosedStreamDoesNotEndInTheFilm) {
  Command command({"-c",
                   "exec \"$0\" render '" + photo_ + "' -o '" + (films_ / "f.mp4") +
                       "' --size 64x64 --frames 100000 --jobs 1 2>&-",
                   KELTO_COMMAND},
                  "", "", "sh");
  // The film is open when it has its name.
  for (int i = 0; i < 6000 && NamesIn(films_).empty(); ++i) usleep(10'000);
  ASSERT_FALSE(NamesIn(films_).empty());
  const std::string streams = "/proc/" + std::to_string(command.Process()) + "/fd/";
  EXPECT_EQ(std::filesystem::read_symlink(streams + "2"), "/dev/null");
}

TEST_F(Report, ClosedStreamsAreNoHindrance) {
  const std::string film = films_ / "f.y4m", other = films_ / "g.y4m";
  for (const char* closed : {"2>&-", "0<&- 1>&-", "0<&- 1>&- 2>&-"}) {
    const auto render = [&](const std::string& out, const std::string& streams) {
      return RunShell("exec \"$0\" render '" + photo_ + "' -o '" + out +
                      "' --size 64x64 --frames 6 --jobs 2 " + streams);
    };
    EXPECT_EQ(render(film, "").code, 0);
    const Outcome outcome = render(other, closed);
    EXPECT_EQ(outcome.code, 0) << closed << ": " << outcome.err;
    EXPECT_EQ(BytesOf(other), BytesOf(film)) << closed;
    std::filesystem::remove(other);
  }
}

TEST_F(Report, AFilmForAClosedStreamIsAFailure) {
  const Outcome outcome = RunShell("exec \"$0\" render '" + photo_ +
                                   "' -o - --format y4m --size 64x64 --frames 2 1>&-");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, HasSubstr("standard output: cannot be written: Bad file descriptor"));
}

TEST_F(Report, QuietOnesAreOfFailuresOnly) {
  Terminal terminal;
  Command command({"render", photo_, "-o", films_ / "f.y4m", "--frames", "60", "--quiet"}, "",
                  terminal.Name());
  EXPECT_EQ(command.Wait().code, 0);
  EXPECT_EQ(terminal.Seen(), "");
  EXPECT_TRUE(IsOneLine(Render(photos_ / "none.jpg", films_ / "f.mp4", {"--quiet"}).err));
}

TEST_F(Report, QuietAndJsonExcludeEachOther) {
  EXPECT_EQ(Render(photo_, films_ / "f.mp4", {"--quiet", "--json"}).code, 2);
}

class Trouble : public Report {
 protected:
  void ExpectNothingLeft(const Outcome& outcome, const std::string& hint) {
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(hint));
    EXPECT_THAT(NamesIn(films_), IsEmpty());
  }
};

TEST_F(Trouble, AFileThatMayNotGrowIsAFailureWithoutAFilm) {
  // Noise, which no encoder makes small.
  WritePng(photo_, MakePicture(320, 180, [](int x, int y) {
             const unsigned mixed = (x * 7919u + y * 104729u) * 2654435761u;
             return Rgb{uint8_t(mixed >> 8), uint8_t(mixed >> 16), uint8_t(mixed >> 24)};
           }));
  for (const char* name : {"f.yuyv", "f.y4m", "f.mp4", "f.mkv", "f.mov"}) {
    for (const char* jobs : {"1", "2"}) {
      // 100 blocks of 512 bytes.
      ExpectNothingLeft(RunShell("ulimit -f 100; exec \"$0\" render " + photo_ + " -o " +
                                 (films_ / name) + " --size 320x180 --frames 50 --jobs " + jobs),
                        films_ / name);
    }
  }
}

TEST_F(Trouble, AFolderThatMayNotBeWrittenIsAFailure) {
  if (geteuid() == 0) {
    // Nothing is forbidden to root but what the system itself keeps.
    const Outcome outcome = Render(photo_, "/proc/film.mp4");
    ExpectNothingLeft(outcome, "/proc/film.mp4");
    return;
  }
  std::filesystem::permissions(
      films_ / "", std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  const Outcome outcome = Render(photo_, films_ / "f.mp4");
  std::filesystem::permissions(films_ / "", std::filesystem::perms::owner_all);
  ExpectNothingLeft(outcome, films_ / "f.mp4");
}

}  // namespace
}  // namespace kelto::test
