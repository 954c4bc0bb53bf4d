#include "host/options/view.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(View, ReadsAZoomAboutTheCentre) { EXPECT_EQ(ParseView("2"), (View{2.0, 0.0, 0.0})); }

TEST(View, ReadsAZoomAboutAPoint) {
  EXPECT_EQ(ParseView("1.5@0.25,-0.1"), (View{1.5, 0.25, -0.1}));
  EXPECT_EQ(ParseView("1@-100,100"), (View{1.0, -100.0, 100.0}));
}

TEST(View, HoldsToTheRangeOfTheEffectsZoom) {
  EXPECT_EQ(ParseView("0.1").zoom, 0.1);
  EXPECT_EQ(ParseView("20").zoom, 20.0);
  for (const char* text : {"0", "0.09", "20.01", "-1", "1e9"}) {
    EXPECT_THROW(ParseView(text), UsageError) << text;
  }
}

TEST(View, RefusesCentresFarOutside) {
  EXPECT_THROW(ParseView("1@100.5,0"), UsageError);
  EXPECT_THROW(ParseView("1@0,-1e300"), UsageError);
}

TEST(View, RefusesWhatIsNoView) {
  for (const char* text : {"", "nonsense", "2@", "2@1", "2@1,", "2@,1", "@0,0", "2@1,2,3", "2@1;2",
                           "2@0,nan", "nan", "2 @0,0"}) {
    EXPECT_THROW(ParseView(text), UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
