#include "host/processes/shared_console.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

TEST(SharedConsole, ALineOfEveryWorkerIsShownOnce) {
  SharedConsole console(3);
  EXPECT_TRUE(console.IsNews(1, "out of memory"));
  EXPECT_FALSE(console.IsNews(0, "out of memory"));
  EXPECT_FALSE(console.IsNews(2, "out of memory"));
  EXPECT_TRUE(console.IsNews(2, "another line"));
}

TEST(SharedConsole, ALineThatAWorkerRepeatsIsShownAgain) {
  SharedConsole console(2);
  EXPECT_TRUE(console.IsNews(0, "slow"));
  EXPECT_TRUE(console.IsNews(0, "slow"));
  EXPECT_FALSE(console.IsNews(1, "slow"));
  EXPECT_FALSE(console.IsNews(1, "slow"));
  EXPECT_TRUE(console.IsNews(1, "slow"));
}

}  // namespace
}  // namespace kelto::host
