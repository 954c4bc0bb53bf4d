// A project file is read with every allocation failing once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <thread>
#include <vector>

#include "host/base/error.h"
#include "host/project/memory_reserve.h"
#include "host/project/project_file.h"
#include "tests/faults/failing_calls.h"

namespace kelto {
namespace {

using test::FailingCall;
using test::FailNth;

constexpr const char* kName = "some.json";

/// A project with a bit of everything, and one that is refused.
constexpr const char* kGood = R"({
  "image": "photo.jpg",
  "film": {"width": 640, "height": 360, "rate": 25, "frames": 50},
  "parameters": {
    "size": [{"time": 0, "value": 1}, {"time": 1, "value": 2}],
    "filter": {"value": "Filter: Gaussian"}
  }
})";
constexpr const char* kBad = R"({
  "image": "photo.jpg",
  "film": {"width": 640, "height": 360, "rate": 25, "frames": 50},
  "parameters": {
    "position": [{"time": 0, "value": [0, 0]}, {"time": 1, "value": [0.1, 0.2]}],
    "size": [{"time": 0, "value": 1}, {"time": 0.5, "value": 2}, {"time": 1}]
  }
})";

/// What reading `text` comes to: the project as it is saved, or the line that refuses it.
std::string Read(const std::string& text) {
  try {
    return host::ProjectText(kName, host::ParseProject(text, kName));
  } catch (const host::Error& error) {
    return error.what();
  }
}

TEST(AProjectFile, OfTheseIsReadOrRefused) {
  EXPECT_THAT(Read(kGood), testing::StartsWith("{"));
  EXPECT_THAT(Read(kBad), testing::StartsWith("some.json: parameters.size[2]: "));
}

TEST(AMemoryReserve, LeavesTheHandlerAsItWasWhateverTheThreadsDid) {
  const std::new_handler before = std::get_new_handler();
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 2000; ++k) {
        const host::MemoryReserve outer(0);
        const host::MemoryReserve inner(100);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::get_new_handler(), before);
}

TEST(AMemoryReserve, IsGivenAwayOnceAndThenThereIsNoMore) {
  const host::MemoryReserve outer(0);
  {
    const host::MemoryReserve inner(0);
    EXPECT_NO_THROW(std::get_new_handler()());
  }
  EXPECT_THROW(std::get_new_handler()(), std::bad_alloc);
}

class AProjectFileIsReadAgain : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Texts, AProjectFileIsReadAgain, testing::Values(kGood, kBad));

TEST_P(AProjectFileIsReadAgain, AfterAnyAllocationHasFailed) {
  const std::string text = GetParam();
  const std::string expected = Read(text);
  bool fired = true;
  int64_t n = 0;
  while (fired) {
    std::string first;
    FailNth failing(FailingCall::kAllocation, ++n);
    try {
      first = Read(text);
    } catch (const std::bad_alloc&) {
      first = "no memory";
    }
    failing.Stop();
    fired = failing.Fired();
    ASSERT_THAT(first, testing::AnyOf("no memory", expected)) << "allocation " << n;
    if (!fired || n % 64 == 0) {
      ASSERT_EQ(Read(text), expected) << "allocation " << n;
    }
  }
  EXPECT_GT(n, 100);
}

}  // namespace
}  // namespace kelto
