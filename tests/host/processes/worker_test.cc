#include "host/processes/worker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "host/base/error.h"
#include "host/processes/shared_frames.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"
#include "tests/support/process.h"

namespace kelto::host {
namespace {

TEST(Worker, SpeaksToItsOwner) {
  Worker worker(WorkerEnd::kAtOnce, [](Channel& line) {
    const auto question = line.Receive();
    line.Send({MessageKind::kDone, question->text + "!"});
  });
  worker.Line().Send({MessageKind::kDone, std::string(100000, 'x')});
  const auto answer = worker.Line().Receive();
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->text, std::string(100000, 'x') + "!");
}

TEST(Worker, ThatEndsWithoutAWordIsToldOf) {
  Worker worker(WorkerEnd::kAtOnce, [](Channel&) {});
  EXPECT_FALSE(worker.Line().Receive());
  EXPECT_EQ(worker.WaitForEnd(), "ended before it was done");
}

TEST(Worker, IsOverWhenNotEvenItsFailureCanBeTold) {
  Worker worker(WorkerEnd::kAtOnce, [](Channel&) { throw 1; });
  EXPECT_FALSE(worker.Line().Receive());
  EXPECT_EQ(worker.WaitForEnd(), "ended with code 1");
}

TEST(Worker, TellsWhatItThrewAndPrinted) {
  Worker worker(WorkerEnd::kAtOnce, [](Channel&) {
    PrintMessage("hello");
    throw UsageError("no such thing");
  });
  auto message = worker.Line().Receive();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->kind, MessageKind::kConsole);
  EXPECT_EQ(message->text, "hello");
  message = worker.Line().Receive();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->kind, MessageKind::kMisused);
  EXPECT_EQ(message->text, "no such thing");
  EXPECT_FALSE(worker.Line().Receive());
}

// What a process says that a file has taken over may be anything.
TEST(Worker, ThatSaysWhatCannotBeIsAsGoodAsGone) {
  const std::string endless("\0\0\0\0\xff\xff\xff\xff", 8), unknown("\x63\0\0\0\0\0\0\0", 8);
  for (const std::string& bytes : {endless, unknown}) {
    Worker worker(WorkerEnd::kAtOnce, [&](Channel& line) {
      EXPECT_EQ(write(line.Socket(), bytes.data(), bytes.size()), 8);
    });
    EXPECT_FALSE(worker.Line().Receive());
  }
}

TEST(Worker, ThatDiesIsMissedAtOnceThoughOthersLive) {
  Worker dying(WorkerEnd::kAtOnce, [](Channel& line) {
    line.Receive();
    raise(SIGABRT);
  });
  // Begun later, when it could have kept the first one's end of the line open.
  Worker other(WorkerEnd::kAtOnce, [](Channel& line) { line.Receive(); });
  dying.Line().Send({});
  EXPECT_FALSE(dying.Line().Receive());
  EXPECT_THAT(dying.WaitForEnd(), testing::StartsWith("was ended by signal 6 ("));
}

TEST(Worker, SeesItsOwnerGo) {
  const auto ends = test::MakePipe();
  const pid_t owner = test::Fork();
  if (owner == 0) {
    Worker worker(WorkerEnd::kAtOnce, [&](Channel& line) {
      close(ends[0]);
      line.Send({});
      for (;;) pause();
    });
    worker.Line().Receive();
    kill(getpid(), SIGKILL);
  }
  close(ends[1]);
  test::WaitFor(owner, nullptr);
  // The end of the pipe comes when the worker, which holds its other side, is gone.
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 0);
  close(ends[0]);
}

TEST(Worker, SeesItsOwnersLineEndThoughOthersLive) {
  const auto told = test::MakePipe(), release = test::MakePipe();
  const pid_t owner = test::Fork();
  if (owner == 0) {
    close(release[1]);
    // Without the system's own word of the owner's end only the line is left to tell it.
    Worker first(WorkerEnd::kAtOnce, [&](Channel& line) {
      prctl(PR_SET_PDEATHSIG, 0);
      line.Send({});
      line.Receive();
      EXPECT_EQ(write(told[1], "x", 1), 1);
    });
    // Begun later, its process has a copy of the owner's end of the first one's line.
    Worker second(WorkerEnd::kAtOnce, [&](Channel& line) {
      prctl(PR_SET_PDEATHSIG, 0);
      line.Send({});
      char byte = 0;
      EXPECT_EQ(read(release[0], &byte, 1), 0);
    });
    first.Line().Receive();
    second.Line().Receive();
    kill(getpid(), SIGKILL);
  }
  test::WaitFor(owner, nullptr);
  pollfd waiting{told[0], POLLIN, 0};
  EXPECT_EQ(poll(&waiting, 1, 20'000), 1) << "the first worker waits for an owner that is gone";
  for (const int end : {release[1], release[0], told[0], told[1]}) close(end);
}

TEST(Worker, EndsWithTheObject) {
  for (const WorkerEnd end : {WorkerEnd::kAtOnce, WorkerEnd::kClearUp}) {
    {
      Worker worker(end, [](Channel&) {
        for (;;) pause();
      });
    }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
    EXPECT_EQ(errno, ECHILD);
  }
}

TEST(Worker, AskedToEndIsLeftToClearUp) {
  const auto ends = test::MakePipe();
  {
    Worker worker(WorkerEnd::kClearUp, [&](Channel& line) {
      CatchInterrupts();
      line.Send({});
      while (InterruptSignal() == 0) usleep(1000);
      usleep(100'000);
      EXPECT_EQ(write(ends[1], "x", 1), 1);
    });
    worker.Line().Receive();
    worker.Stop();
    // The object's end asks for the same, and must not do so by a second signal.
    usleep(20'000);
  }
  close(ends[1]);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  close(ends[0]);
}

TEST(SharedFrames, WrittenInAWorkerAreSeenByTheOwner) {
  constexpr FrameSize kFrame{3, 2};
  SharedFrames frames(kFrame, PixelLayout::kBGRA, 2);
  Worker worker(WorkerEnd::kAtOnce, [&](Channel& line) {
    const std::vector<uint8_t> bytes(size_t{16} * 2, 7);
    frames.Store(1, {bytes.data(), 16, kFrame});
    line.Send({});
  });
  ASSERT_TRUE(worker.Line().Receive());
  EXPECT_EQ(frames.View(1).Row(1)[11], 7);
  EXPECT_EQ(frames.View(0).Row(1)[11], 0);
}

}  // namespace
}  // namespace kelto::host
