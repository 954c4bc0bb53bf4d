#include "host/terminal/standard_streams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "tests/support/process.h"

namespace kelto::host {
namespace {

/// What a child returns that begins with these streams closed: 0 when all is as it should be.
int ResultWithout(std::initializer_list<int> closed) {
  const pid_t process = test::Fork();
  if (process == 0) {
    for (const int stream : closed) close(stream);
    OpenStandardStreams();
    const int next = open("/dev/null", O_RDONLY);
    if (next <= 2) _exit(1);
    close(next);
    for (const int stream : closed) {
      if (fcntl(stream, F_GETFD) < 0) _exit(2);
      // Nobody is to believe that what was written is there.
      if (write(stream, "x", 1) != -1 || errno != EBADF) _exit(3);
    }
    // Nothing else is left open.
    _exit(open("/dev/null", O_RDONLY) == next ? 0 : 4);
  }
  int status = 0;
  test::WaitFor(process, &status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(StandardStreams, ThatAreClosedAreNoPlaceForFiles) {
  EXPECT_EQ(ResultWithout({}), 0);
  EXPECT_EQ(ResultWithout({0}), 0);
  EXPECT_EQ(ResultWithout({1}), 0);
  EXPECT_EQ(ResultWithout({2}), 0);
  EXPECT_EQ(ResultWithout({0, 1}), 0);
  EXPECT_EQ(ResultWithout({0, 1, 2}), 0);
}

}  // namespace
}  // namespace kelto::host
