#include "host/jobs/picture_memory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr uint64_t kGiB = uint64_t{1} << 30;

class Workers : public testing::Test {
 protected:
  Workers() {
    SetMessageSink([this](const std::string& text) { messages_.push_back(text); });
  }
  ~Workers() override { SetMessageSink({}); }

  std::vector<std::string> messages_;
  Photo photo_{"huge.png", "huge.png", 0, 20000, 20000, 3 * kGiB};
};

TEST_F(Workers, AreAsManyAsMayLoadThePhotoAtATime) {
  EXPECT_EQ(WorkersFor(photo_, 3, 9 * kGiB), 3);
  EXPECT_TRUE(messages_.empty());
  EXPECT_EQ(WorkersFor(photo_, 3, 9 * kGiB - 1), 2);
  ASSERT_EQ(messages_.size(), 1u);
  EXPECT_EQ(messages_[0],
            "huge.png: takes 3072 MiB in each process; 2 of 3 stay within the limit of 9215 MiB");
}

TEST_F(Workers, AreOneAtTheLeast) { EXPECT_EQ(WorkersFor(photo_, 8, kGiB), 1); }

TEST(PictureMemory, HoldsTheLargestPicture) { EXPECT_GE(PictureMemory(), 4 * kGiB); }

}  // namespace
}  // namespace kelto::host
