// Films that are stopped on the way.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "tests/host/command/run.h"
#include "tests/support/hostile_files.h"

namespace kelto::test {
namespace {

using namespace std::chrono_literals;

class Interrupted : public testing::Test {
 protected:
  Interrupted() {
    WritePng(photo_, MakePicture(64, 64, [](int x, int y) {
               return Rgb{uint8_t(4 * x), uint8_t(4 * y), 0};
             }));
  }
  /// A film that would take far longer than the test.
  Words LongFilm(const std::string& out) const {
    return {"render", photo_, "-o", out, "--frames", "1000000", "--to", "2"};
  }
  /// Waits until the film's temporary file is there.
  void WaitForWork() {
    for (int i = 0; i < 600 && NamesIn(films_).empty(); ++i) std::this_thread::sleep_for(50ms);
    ASSERT_EQ(NamesIn(films_).size(), 1u);
  }

  TempFolder photos_, films_;
  const std::string photo_ = photos_ / "photo.png";
};

TEST_F(Interrupted, FilmsAreClearedAwayAndTheCommandDiesOfTheSignal) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Command command(LongFilm(films_ / "film.mp4"));
    WaitForWork();
    command.Signal(signal);
    const Outcome outcome = command.Wait();
    EXPECT_EQ(outcome.signal, signal);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(NamesIn(films_), testing::IsEmpty());
  }
}

TEST_F(Interrupted, EndsTheCommandWhileAPhotoLoads) {
  // Loading it takes several seconds of any machine.
  const std::string slow = photos_ / "slow.png";
  WriteBytes(slow, FlatPng(23000));
  Command command(
      {"render", slow, "-o", films_ / "film.mp4", "--jobs", "1", "--frames", "2", "--move", "in"});
  WaitForWork();
  std::this_thread::sleep_for(200ms);
  const auto before = std::chrono::steady_clock::now();
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait().signal, SIGINT);
  // Half a second where the machine has nothing else to do.
  EXPECT_LT(std::chrono::steady_clock::now() - before, 2s);
  EXPECT_THAT(NamesIn(films_), testing::IsEmpty());
}

TEST_F(Interrupted, AKilledCommandLeavesNothingUnderTheFilmsName) {
  Command command(LongFilm(films_ / "film.mkv"));
  WaitForWork();
  command.Signal(SIGKILL);
  EXPECT_EQ(command.Wait().signal, SIGKILL);
  for (const std::string& name : NamesIn(films_)) EXPECT_NE(name, "film.mkv");
}

TEST_F(Interrupted, AReaderThatGoesAwayIsAFailure) {
  for (const char* format : {"bgra", "yuyv", "y4m", "mkv", "mp4", "png"}) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    // The command opens the pipe's writing end by its name in the process file system.
    Words words = LongFilm("-");
    // Quiet: a slow machine takes long enough for a line of progress.
    words.insert(words.end(), {"--format", format, "--size", "640x360", "--quiet"});
    Command command(words, "/proc/self/fd/" + std::to_string(ends[1]));
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 1) << format;
    close(ends[0]);
    const Outcome outcome = command.Wait();
    EXPECT_EQ(outcome.code, 1) << format;
    EXPECT_EQ(outcome.signal, 0) << format;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, testing::HasSubstr("standard output"));
  }
}

TEST_F(Interrupted, AStalledReaderDoesNotHoldTheCommand) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  Words words = LongFilm("-");
  words.insert(words.end(), {"--format", "bgra"});
  Command command(words, "/proc/self/fd/" + std::to_string(ends[1]));
  close(ends[1]);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  std::this_thread::sleep_for(200ms);  // the pipe is full by then
  command.Signal(SIGTERM);
  EXPECT_EQ(command.Wait().signal, SIGTERM);
  close(ends[0]);
}

}  // namespace
}  // namespace kelto::test
