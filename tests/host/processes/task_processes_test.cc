#include "host/processes/task_processes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>
#include <set>
#include <thread>
#include <vector>

namespace kelto::host {
namespace {

/// Counts, in memory that all processes share, how many tasks hold memory at a time.
struct Held {
  std::atomic<int> now = 0, most = 0;
};

class Tasks : public testing::Test {
 protected:
  Tasks()
      : held_(new (mmap(nullptr, sizeof(Held), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                        -1, 0)) Held) {}
  ~Tasks() override { munmap(held_, sizeof *held_); }

  /// Runs eight tasks that want so much each, eight at a time; gives how many had it at a time.
  int MostAtOnce(uint64_t memory, uint64_t each) {
    held_->most = 0;
    std::set<size_t> ended;
    RunTasks({8, memory,
              [&](size_t, const TaskOwner& owner) {
                owner.await(each);
                const int now = ++held_->now;
                for (int most = held_->most; most < now;) {
                  if (held_->most.compare_exchange_weak(most, now)) break;
                }
                // Long enough for the others to come, too, were they let.
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                --held_->now;
              },
              [&](size_t index, const std::string& failure) {
                EXPECT_EQ(failure, "");
                ended.insert(index);
              },
              [](size_t, const std::string&) {}},
             8);
    EXPECT_EQ(ended.size(), 8u) << "every task has its turn";
    return held_->most;
  }

  Held* held_;
};

TEST_F(Tasks, HaveNoMoreMemoryAtATimeThanThereIs) {
  EXPECT_LE(MostAtOnce(10, 3), 3);
  EXPECT_EQ(MostAtOnce(10, 6), 1);
}

TEST_F(Tasks, ThatWantMoreThanThereIsAreDoneAlone) { EXPECT_EQ(MostAtOnce(10, 11), 1); }

TEST_F(Tasks, ReportHowFarTheyAreOncePerPercent) {
  std::vector<double> shares;
  RunTasks({1, 0,
            [](size_t, const TaskOwner& owner) {
              for (int done = 0; done <= 1000; ++done) owner.report(done / 1000.0);
            },
            [](size_t, const std::string& failure) { EXPECT_EQ(failure, ""); },
            [](size_t, const std::string&) {},
            [&](size_t index, double share) {
              EXPECT_EQ(index, 0u);
              shares.push_back(share);
            }},
           1);
  ASSERT_EQ(shares.size(), 100u);
  for (size_t i = 0; i < shares.size(); ++i) {
    EXPECT_DOUBLE_EQ(shares[i], (static_cast<double>(i) + 1.0) / 100.0);
  }
}

TEST_F(Tasks, ThatWantLittleDoNotWait) { EXPECT_GE(MostAtOnce(1000, 0), 1); }

}  // namespace
}  // namespace kelto::host
