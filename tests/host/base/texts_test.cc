#include "host/base/texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelto::host {
namespace {

TEST(Texts, NumbersHaveTheirDecimalsAndNoMinusInFrontOfZero) {
  EXPECT_EQ(FixedText(-0.0001, 1), "0.0");
  EXPECT_EQ(FixedText(-1.25, 2), "-1.25");
  EXPECT_EQ(FixedText(2.0, 0), "2");
  EXPECT_EQ(FixedText(1e300, 0).size(), 301u);
}

TEST(Texts, ListsHaveCommasBetween) {
  EXPECT_EQ(Joined(std::vector<std::string>{}), "");
  EXPECT_EQ(Joined(std::vector<const char*>{"a"}), "a");
  EXPECT_EQ(Joined(std::vector<const char*>{"a", "b", ""}), "a, b, ");
  EXPECT_EQ(Joined(std::vector<std::string>{"", "b"}, " or "), " or b");
}

}  // namespace
}  // namespace kelto::host
