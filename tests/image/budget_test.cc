#include <gtest/gtest.h>

#include "state/module.h"
#include "tests/image/instance.h"

namespace kelto {
namespace {

using test::Instance;

constexpr int32_t kMiB = 1024 * 1024;

// Memory is asked for but never touched here, so that large images cost nothing.
class Budget : public test::ImageTest {
 protected:
  /// An image of whole mebibytes plus `more` rows of 4096 bytes.
  static IplImage* Hold(Instance& instance, int32_t mebibytes, int32_t more = 0, int level = 0) {
    return instance.Hold(1024, mebibytes * (kMiB / 4096) + more, level);
  }
};

TEST_F(Budget, IsOneHundredAndTwentyMebibytes) { EXPECT_EQ(kCacheBudget, 120u * kMiB); }

TEST_F(Budget, ATotalOfExactlyTheBudgetIsKept) {
  Instance a, b;
  Hold(a, 10);
  Hold(b, 110);
  EnforceCacheBudget(b);
  EXPECT_FALSE(a.empty());
  EXPECT_EQ(Module().cachedBytes, kCacheBudget);
}

TEST_F(Budget, OneRowMoreThanTheBudgetEmptiesTheOther) {
  Instance a, b;
  Hold(a, 10);
  Hold(b, 110, 1);
  EnforceCacheBudget(b);
  EXPECT_TRUE(a.empty());
  EXPECT_FALSE(b.empty());
}

TEST_F(Budget, A121MebibyteImageEmptiesTheOthersAndStaysItself) {
  Instance a, b;
  Hold(a, 10);
  Hold(b, 121);
  EnforceCacheBudget(b);
  EXPECT_TRUE(a.empty());
  EXPECT_FALSE(b.empty());
  EXPECT_EQ(Module().cachedBytes, 121u * kMiB) << "still above the limit";
}

TEST_F(Budget, WithOneInstanceOnlyNothingIsEverFreed) {
  Instance only;
  Hold(only, 200);
  EnforceCacheBudget(only);
  EXPECT_FALSE(only.empty());
}

TEST_F(Budget, OthersAreEmptiedInOrderOfCreationUntilTheTotalFits) {
  Instance first, caller, second, third;
  Hold(first, 30);
  Hold(first, 10, 0, 5);
  Hold(caller, 60);
  Hold(second, 30);
  Hold(third, 40);
  EnforceCacheBudget(caller);
  EXPECT_TRUE(first.empty()) << "a whole instance at a time";
  EXPECT_TRUE(second.empty());
  EXPECT_FALSE(third.empty()) << "60 + 40 fit";
  EXPECT_FALSE(caller.empty());
}

}  // namespace
}  // namespace kelto
