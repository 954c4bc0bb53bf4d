// Views as people write them.
#include "host/options/given_view.h"

#include <gtest/gtest.h>

#include <random>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(GivenView, IsAZoomWithItsCentreOrAPartOfThePhoto) {
  EXPECT_EQ(ParseGivenView("2@0.1,-0.05"), GivenView(View{2.0, 0.1, -0.05}));
  EXPECT_EQ(ParseGivenView("1200,400,960,540"), GivenView(PhotoRect{1200, 400, 960, 540}));
  EXPECT_THROW(ParseGivenView("1200,400,960"), UsageError);
  EXPECT_THROW(ParseGivenView("30"), UsageError);
}

TEST(GivenView, IsWrittenAsShortAsItCanBeRead) {
  EXPECT_EQ(TextOf(View{2.0, 0.0, 0.0}), "2");
  EXPECT_EQ(TextOf(View{1.5, 0.25, 0.0}), "1.5@0.25,0");
  EXPECT_EQ(TextOf(PhotoRect{1200.5, 400, 960, 540}), "1200.5,400,960,540");
}

TEST(GivenView, IsReadAsItWasToTheLastBit) {
  std::mt19937 random(5);
  const auto number = [&](double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random);
  };
  for (int i = 0; i < 1000; ++i) {
    const View view{number(0.1, 20), number(-100, 100), number(-1e-6, 1e-6)};
    const PhotoRect part{number(-1e5, 1e5), number(-1, 1), number(1e-3, 1e5), number(1, 2)};
    EXPECT_EQ(ParseGivenView(TextOf(view)), GivenView(view));
    EXPECT_EQ(ParseGivenView(TextOf(part)), GivenView(part));
  }
}

}  // namespace
}  // namespace kelto::host
