#include "host/terminal/interrupt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/support/photo.h"
#include "tests/support/process.h"

namespace kelto::host {
namespace {

/// How a process ends that catches interrupts, gets `signal` twice, so long after each other, and
/// returns 0 when it has noted that.
int EndOfTwice(int signal, useconds_t between) {
  const pid_t process = test::Fork();
  if (process == 0) {
    std::signal(signal, SIG_DFL);
    CatchInterrupts();
    std::raise(signal);
    usleep(between);
    std::raise(signal);
    _exit(InterruptSignal() == signal ? 0 : 1);
  }
  int status = 0;
  test::WaitFor(process, &status);
  return status;
}

TEST(Interrupt, ThatComesTwiceAtOnceIsOne) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const int status = EndOfTwice(signal, 0);
    EXPECT_TRUE(WIFEXITED(status)) << strsignal(signal);
    EXPECT_EQ(WEXITSTATUS(status), 0) << strsignal(signal);
  }
}

TEST(Interrupt, RepeatedLaterEndsTheProcess) {
  const int status = EndOfTwice(SIGINT, 2'200'000);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

/// How a process ends that has an unfinished file and another one, and does `work`; 0 when that
/// comes to its end.
template <typename Work>
int EndOfWork(const test::TempFolder& folder, const Work& work) {
  for (const char* name : {"unfinished", "other"}) std::ofstream(folder / name) << "x";
  const pid_t process = test::Fork();
  if (process == 0) {
    std::signal(SIGINT, SIG_DFL);
    CatchInterrupts();
    const UnfinishedFile file(folder / "unfinished");
    work();
    _exit(0);
  }
  int status = 0;
  test::WaitFor(process, &status);
  return status;
}

TEST(Interrupt, EndsAtOnceWhatCannotLookForItAndLeavesNothingUnfinished) {
  const test::TempFolder folder;
  const int status = EndOfWork(folder, [] {
    const InterruptsEndAtOnce atOnce;
    std::raise(SIGINT);
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
  EXPECT_FALSE(std::filesystem::exists(folder / "unfinished"));
  EXPECT_TRUE(std::filesystem::exists(folder / "other"));
}

TEST(Interrupt, NotedBeforeEndsSuchWorkBeforeItBegins) {
  const test::TempFolder folder;
  const int status = EndOfWork(folder, [] {
    std::raise(SIGINT);
    const InterruptsEndAtOnce atOnce;
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_FALSE(std::filesystem::exists(folder / "unfinished"));
}

TEST(Interrupt, AfterSuchWorkIsNotedAgain) {
  const test::TempFolder folder;
  const int status = EndOfWork(folder, [] {
    { const InterruptsEndAtOnce atOnce; }
    std::raise(SIGINT);
  });
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_TRUE(std::filesystem::exists(folder / "unfinished"));
}

}  // namespace
}  // namespace kelto::host
