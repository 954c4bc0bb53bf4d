#include "host/jobs/fitted_times.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/base/error.h"

namespace kelto::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Given = std::vector<std::optional<int32_t>>;

int64_t FilmOf(const std::vector<int32_t>& times, int32_t fade) {
  int64_t frames = 0;
  for (const int32_t time : times) frames += time;
  for (size_t i = 0; i + 1 < times.size(); ++i) {
    frames -= std::min(fade, std::min(times[i], times[i + 1]) / 2);
  }
  return frames;
}

TEST(FittedTimes, FillAnyLengthWithPicturesThatDifferByAFrameAtTheMost) {
  for (const int32_t fade : {0, 5, 25}) {
    for (int64_t total = 40; total < 1500; total += 7) {
      for (const size_t count : {1, 2, 3, 20}) {
        const std::vector<int32_t> times =
            FittedTimes(total, Given(count), std::vector<int32_t>(count, fade));
        EXPECT_EQ(FilmOf(times, fade), total) << count << " pictures, fade " << fade;
        const auto [least, most] = std::minmax_element(times.begin(), times.end());
        EXPECT_LE(*most - *least, 1) << total << ": " << count << " pictures, fade " << fade;
      }
    }
  }
}

TEST(FittedTimes, LeavePicturesWithATimeOfTheirOwnAlone) {
  EXPECT_THAT(FittedTimes(100, {std::nullopt, 10, std::nullopt}, {0, 0, 0}),
              ElementsAre(45, 10, 45));
}

TEST(FittedTimes, AreRefusedWhereTheyDoNotFit) {
  try {
    FittedTimes(5, Given(9), std::vector<int32_t>(9, 0));
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_STREQ(error.what(), "9 pictures do not fit into the 5 frames of the sound");
  }
  EXPECT_THROW(FittedTimes(50, {10, 10}, {0, 0}), UsageError);
}

}  // namespace
}  // namespace kelto::host
