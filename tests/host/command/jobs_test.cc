// Films that several processes render, and parts of films.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;

class Jobs : public testing::Test {
 protected:
  Jobs() {
    WritePng(photo_, MakePicture(200, 150, [](int x, int y) {
               return Rgb{uint8_t(x), uint8_t(y * 3 / 2), uint8_t((x * 7) ^ (y * 13))};
             }));
  }
  /// Renders with so many jobs, and gives the film's bytes.
  std::string Film(const std::string& name, const std::string& jobs, Words more = {}) {
    more.insert(more.end(), {"--jobs", jobs, "--to", "3@0.2,-0.1"});
    const Outcome outcome = Render(photo_, films_ / name, more);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return BytesOf(films_ / name);
  }
  void ExpectSameForAll(const std::string& name, const Words& more) {
    const std::string alone = Film(name, "1", more);
    EXPECT_FALSE(alone.empty());
    for (const char* jobs : {"2", "3", "7"}) {
      EXPECT_EQ(Film(name, jobs, more), alone) << name << " with " << jobs << " jobs";
    }
  }
  /// A film that would take far longer than the test.
  Words LongFilm() const {
    return {"render", photo_,   "-o", films_ / "film.mkv", "--frames", "1000000", "--to",
            "2",      "--jobs", "3"};
  }
  /// Waits until three processes render.
  std::vector<pid_t> WaitForWorkers(pid_t command) {
    std::vector<pid_t> workers;
    for (int i = 0; i < 600 && (workers.size() < 3 || NamesIn(films_).empty()); ++i) {
      std::this_thread::sleep_for(50ms);
      workers = ChildrenOf(command);
    }
    EXPECT_EQ(workers.size(), 3u);
    return workers;
  }
  /// Waits for processes that are not this one's children to go.
  void ExpectGone(const std::vector<pid_t>& processes) {
    for (const pid_t process : processes) {
      for (int i = 0; i < 600 && IsRunning(process); ++i) std::this_thread::sleep_for(50ms);
      EXPECT_FALSE(IsRunning(process)) << "process " << process << " is left";
    }
  }

  TempFolder photos_, films_;
  const std::string photo_ = photos_ / "photo.png";
};

TEST_F(Jobs, MakeTheSameFilmWhateverTheirNumber) {
  for (const char* name : {"f.yuyv", "f.bgra", "f.y4m", "f.mp4", "f.mkv"}) {
    ExpectSameForAll(name, {"--frames", "23"});
  }
}

TEST_F(Jobs, MakeTheSameFieldsAndPreviews) {
  ExpectSameForAll("f.yuyv", {"--frames", "9", "--fields", "top"});
  ExpectSameForAll("f.yuyv", {"--frames", "9", "--play-mode", "1"});
  ExpectSameForAll("f.bgra", {"--frames", "9", "--filter", "realtime", "--display", "source"});
}

TEST_F(Jobs, MayBeMoreThanThereAreFrames) { ExpectSameForAll("f.yuyv", {"--frames", "1"}); }

TEST_F(Jobs, WriteEveryPicture) {
  for (const char* jobs : {"1", "4"}) {
    Film("f%d.png", jobs, {"--frames", "6"});
    EXPECT_EQ(NamesIn(films_).size(), 6u);
  }
}

TEST_F(Jobs, GoThroughAPipe) {
  const Words words{"render", photo_,     "-o", "-",    "--format", "yuyv",  "--size",
                    "96x64",  "--frames", "9",  "--to", "2",        "--jobs"};
  Words one = words, three = words;
  one.push_back("1");
  three.push_back("3");
  EXPECT_EQ(RunKelto(one).out.size(), 9u * 96 * 64 * 2);
  EXPECT_EQ(RunKelto(one).out, RunKelto(three).out);
}

TEST_F(Jobs, TellWhatIsWrongWithThePictureInOneLine) {
  const std::string cut = photos_ / "cut.jpg";
  WriteJpeg(cut, MakePicture(400, 300, [](int x, int y) {
              return Rgb{uint8_t(x * y), uint8_t(x ^ y), uint8_t(x)};
            }));
  std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);
  const Outcome outcome = Render(cut, films_ / "film.mp4", {"--jobs", "3"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr(cut + ": cannot be read as a picture"));
  EXPECT_THAT(NamesIn(films_), IsEmpty());
}

TEST_F(Jobs, AWorkerThatDiesIsToldOfAndLeavesNoFilm) {
  Command command(LongFilm());
  const std::vector<pid_t> workers = WaitForWorkers(command.Process());
  kill(workers.at(1), SIGKILL);
  const Outcome outcome = command.Wait();
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("ended by signal 9"));
  EXPECT_THAT(NamesIn(films_), IsEmpty());
  ExpectGone(workers);
}

TEST_F(Jobs, AnInterruptEndsAllOfThem) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Command command(LongFilm());
    const std::vector<pid_t> workers = WaitForWorkers(command.Process());
    // A terminal sends it to all, other programs to one.
    if (signal == SIGINT) {
      for (const pid_t worker : workers) kill(worker, signal);
    }
    command.Signal(signal);
    const Outcome outcome = command.Wait();
    EXPECT_EQ(outcome.signal, signal);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(NamesIn(films_), IsEmpty());
    ExpectGone(workers);
  }
}

TEST_F(Jobs, AKilledCommandLeavesNoProcessBehind) {
  Command command(LongFilm());
  const std::vector<pid_t> workers = WaitForWorkers(command.Process());
  command.Signal(SIGKILL);
  EXPECT_EQ(command.Wait().signal, SIGKILL);
  ExpectGone(workers);
}

TEST_F(Jobs, AreCountedInWholeNumbersFromOne) {
  for (const char* jobs : {"0", "-1", "1.5", "many", "1000"}) {
    const Outcome outcome = Render(photo_, films_ / "f.y4m", {"--jobs", jobs});
    EXPECT_EQ(outcome.code, 2) << jobs;
    EXPECT_THAT(outcome.err, HasSubstr("--jobs"));
  }
}

using Parts = Jobs;

TEST_F(Parts, JoinToTheWholeFilm) {
  for (const Words& kind : {Words{"--size", "96x64"}, {"--size", "96x64", "--fields", "bottom"}}) {
    Words words = kind;
    words.insert(words.end(), {"--seconds", "0.8"});  // 20 frames
    const std::string whole = Film("whole.yuyv", "1", words);
    std::string joined;
    for (const char* part : {"0..1", "1..8", "8..20"}) {
      Words asked = words;
      asked.insert(asked.end(), {"--frames", part});
      joined += Film("part.yuyv", "2", asked);
    }
    EXPECT_EQ(joined.size(), 20u * 96 * 64 * 2);
    EXPECT_EQ(joined, whole);
  }
}

TEST_F(Parts, OfPicturesGoOnNumbering) {
  Film("whole-%02d.png", "1", {"--seconds", "0.4"});
  Film("part-%02d.png", "2", {"--seconds", "0.4", "--frames", "3..7"});
  for (int i = 0; i < 10; ++i) {
    const std::string number = "0" + std::to_string(i) + ".png";
    const bool inPart = i >= 3 && i < 7;
    EXPECT_EQ(std::filesystem::exists(films_ / ("part-" + number)), inPart) << i;
    if (inPart) {
      EXPECT_EQ(BytesOf(films_ / ("part-" + number)), BytesOf(films_ / ("whole-" + number)));
    }
  }
}

TEST_F(Parts, ThatTheFilmDoesNotHaveAreMisuse) {
  for (const char* part : {"0..11", "5..5", "6..5", "-1..3", "a..b", ".."}) {
    const Outcome outcome =
        Render(photo_, films_ / "f.yuyv", {"--seconds", "0.4", "--frames", part});
    EXPECT_EQ(outcome.code, 2) << part;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("--frames"));
  }
}

}  // namespace
}  // namespace kelto::test
