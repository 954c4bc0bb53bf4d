#include "tests/host/support/videos.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kelto::test {

void RunFfmpeg(const std::string& words) {
  const std::string command = "ffmpeg -v error -nostdin -y " + words;
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace kelto::test
