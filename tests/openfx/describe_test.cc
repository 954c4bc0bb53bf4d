// What the plug-in says of itself to a strict host.
#include <gtest/gtest.h>

#include <algorithm>

#include "adapters/pages/controls.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

const char* const kContexts[] = {ofx::context::kFilter, ofx::context::kGeneral,
                                 ofx::context::kGenerator};

class OpenFxDescribe : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }
};

TEST_F(OpenFxDescribe, EveryContextGetsItsClipsAndAllParameters) {
  for (const char* context : kContexts) {
    StrictHost host(BuiltPlugin());
    ASSERT_EQ(host.Start(context), ofx::kOk) << context;
    EXPECT_TRUE(host.hasClip("Output"));
    EXPECT_EQ(host.hasClip("Source"), context != std::string(ofx::context::kGenerator));
    for (const pages::Control& control : pages::Controls()) {
      EXPECT_TRUE(host.parameters().contains(control.parameter().name)) << control.parameter().name;
    }
    EXPECT_EQ(host.Create(), ofx::kOk);
    EXPECT_EQ(host.Destroy(), ofx::kOk);
  }
}

TEST_F(OpenFxDescribe, AContextThatIsNotSupportedIsRefused) {
  StrictHost host(BuiltPlugin());
  EXPECT_EQ(host.Start("OfxImageEffectContextTransition"), ofx::kUnsupported);
}

TEST_F(OpenFxDescribe, NumbersHaveRangeDisplayRangeAndDefaultWithin) {
  StrictHost host(BuiltPlugin());
  ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
  for (const auto& [name, parameter] : host.parameters()) {
    if (parameter.type != ofx::value::kDouble) continue;
    const auto of = [&](const char* property) { return parameter.properties->Double(property); };
    EXPECT_LE(of(ofx::prop::kMin), of(ofx::prop::kDisplayMin)) << name;
    EXPECT_LT(of(ofx::prop::kDisplayMin), of(ofx::prop::kDisplayMax)) << name;
    EXPECT_LE(of(ofx::prop::kDisplayMax), of(ofx::prop::kMax)) << name;
    EXPECT_LE(of(ofx::prop::kMin), of(ofx::prop::kDefault)) << name;
    EXPECT_LE(of(ofx::prop::kDefault), of(ofx::prop::kMax)) << name;
  }
}

TEST_F(OpenFxDescribe, ChoicesKeepTheirOrder) {
  StrictHost host(BuiltPlugin());
  ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
  // Saved projects hold the number of an option.
  const std::vector<std::string> filters{"Real time", "Triangle", "Quadratic",    "Cubic",
                                         "Catmull",   "Gaussian", "High quality", "Ultra quality"};
  EXPECT_EQ(host.parameter("filter").properties->AllStrings(ofx::prop::kChoiceOption), filters);
  EXPECT_EQ(host.parameter("filter").choice, 6);
  const std::vector<std::string> motions{"Automatic", "Steady", "Fly", "Linear"};
  EXPECT_EQ(host.parameter("motion").properties->AllStrings(ofx::prop::kChoiceOption), motions);
}

TEST_F(OpenFxDescribe, TheEffectSaysWhatItCan) {
  StrictHost host(BuiltPlugin());
  ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
  EXPECT_EQ(host.effect().AllStrings(ofx::prop::kSupportedContexts).size(), 3u);
  const std::vector<std::string> depths{ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat};
  EXPECT_EQ(host.effect().AllStrings(ofx::prop::kSupportedPixelDepths), depths);
  EXPECT_EQ(host.effect().Int(ofx::prop::kSupportsTiles), 0);
  EXPECT_EQ(host.effect().String(ofx::prop::kRenderThreadSafety), ofx::value::kFullySafe);
}

TEST_F(OpenFxDescribe, AHostWithoutASuiteThatIsNeededIsRefused) {
  for (const char* suite : {ofx::kPropertySuite, ofx::kEffectSuite, ofx::kParameterSuite}) {
    StrictHost host(BuiltPlugin(), {suite, false});
    EXPECT_EQ(host.Start(ofx::context::kFilter), ofx::kMissingHostFeature) << suite;
  }
  StrictHost host(BuiltPlugin(), {ofx::kMessageSuite, false});
  EXPECT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
}

TEST_F(OpenFxDescribe, TheIconIsNamedAfterTheEffectInTheBundlesResources) {
  StrictHost host(BuiltPlugin());
  ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
  const std::string identifier = BuiltPlugin().identifier;
  EXPECT_EQ(host.effect().String(ofx::prop::kIcon, 0), identifier + ".svg");
  EXPECT_EQ(host.effect().String(ofx::prop::kIcon, 1), identifier + ".png");
}

TEST_F(OpenFxDescribe, ActionsInAnyOrderEndInAStatus) {
  StrictHost host(BuiltPlugin());
  // Without an instance, and before load.
  EXPECT_NE(BuiltPlugin().mainEntry(nullptr, nullptr, nullptr, nullptr), ofx::kOk);
  ASSERT_EQ(host.Start(ofx::context::kFilter), ofx::kOk);
  for (const char* action :
       {ofx::action::kRender, ofx::action::kIsIdentity, ofx::action::kRegionOfDefinition,
        ofx::action::kClipPreferences, "OfxActionBeginInstanceEdit"}) {
    EXPECT_EQ(host.Call(action), ofx::kBadHandle) << action;
    EXPECT_EQ(BuiltPlugin().mainEntry(action, nullptr, nullptr, nullptr), ofx::kBadHandle);
  }
  ASSERT_EQ(host.Create(), ofx::kOk);
  EXPECT_EQ(host.Call("OfxActionBeginInstanceEdit"), ofx::kReplyDefault);
  EXPECT_EQ(host.Call(ofx::action::kRender), ofx::kBadHandle) << "nothing says what to render";
  EXPECT_EQ(host.Call(ofx::action::kPurgeCaches), ofx::kOk);
}

}  // namespace
}  // namespace kelto::test
