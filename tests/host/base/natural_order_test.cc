#include "host/base/natural_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace kelto::host {
namespace {

TEST(NaturalOrder, CountsNumbersAsPeopleDo) {
  std::vector<std::string> names = {
      "IMG_10.jpg", "IMG_2.jpg",  "IMG_1.jpg", "IMG_002b.jpg",
      "a.jpg",      "IMG_2a.jpg", "IMG.jpg",   "99999999999999999999.jpg",
      "8.jpg"};
  std::sort(names.begin(), names.end(), &NaturallyBefore);
  EXPECT_THAT(names, testing::ElementsAre("8.jpg", "99999999999999999999.jpg", "IMG.jpg",
                                          "IMG_1.jpg", "IMG_2.jpg", "IMG_2a.jpg", "IMG_002b.jpg",
                                          "IMG_10.jpg", "a.jpg"));
}

TEST(NaturalOrder, TellsNamesApartByTheirZeros) {
  EXPECT_TRUE(NaturallyBefore("01", "1"));
  EXPECT_FALSE(NaturallyBefore("1", "01"));
  EXPECT_FALSE(NaturallyBefore("1", "1"));
}

TEST(NaturalOrder, IsAnOrderForNamesOfAnyKind) {
  std::mt19937 random(1);
  const std::string letters = "012a.";
  const auto name = [&] {
    std::string text;
    for (size_t i = random() % 5; i > 0; --i) text += letters[random() % letters.size()];
    return text;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string a = name(), b = name(), c = name();
    EXPECT_EQ(NaturallyBefore(a, b) + NaturallyBefore(b, a), a == b ? 0 : 1) << a << ' ' << b;
    if (NaturallyBefore(a, b) && NaturallyBefore(b, c)) {
      EXPECT_TRUE(NaturallyBefore(a, c)) << a << ' ' << b << ' ' << c;
    }
  }
}

}  // namespace
}  // namespace kelto::host
