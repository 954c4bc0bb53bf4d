// The interface's binary form: records that hosts compiled for themselves.
#include <gtest/gtest.h>

#include "platform/openfx.h"

namespace kelto::ofx {
namespace {

constexpr size_t kPointer = sizeof(void*);

TEST(OpenFxInterface, RecordsHaveTheLayoutThatHostsCompile) {
  EXPECT_EQ(sizeof(Host), 2 * kPointer);
  EXPECT_EQ(offsetof(Host, fetchSuite), kPointer);
  EXPECT_EQ(offsetof(Plugin, api), 0u);
  EXPECT_EQ(offsetof(Plugin, apiVersion), kPointer);
  EXPECT_EQ(offsetof(Plugin, identifier), 2 * kPointer);
  EXPECT_EQ(offsetof(Plugin, versionMajor), 3 * kPointer);
  EXPECT_EQ(offsetof(Plugin, versionMinor), 3 * kPointer + 4);
  EXPECT_EQ(offsetof(Plugin, setHost), 3 * kPointer + 8);
  EXPECT_EQ(offsetof(Plugin, mainEntry), 4 * kPointer + 8);
  EXPECT_EQ(sizeof(RectI), 16u);
  EXPECT_EQ(sizeof(RectD), 32u);
}

TEST(OpenFxInterface, SuitesHaveTheirFunctionsAtTheirPlaces) {
  EXPECT_EQ(sizeof(PropertySuite), 18 * kPointer);
  EXPECT_EQ(offsetof(PropertySuite, setPointerN), 4 * kPointer);
  EXPECT_EQ(offsetof(PropertySuite, getPointer), 8 * kPointer);
  EXPECT_EQ(offsetof(PropertySuite, getIntN), 15 * kPointer);
  EXPECT_EQ(offsetof(PropertySuite, getDimension), 17 * kPointer);
  EXPECT_EQ(sizeof(EffectSuite), 13 * kPointer);
  EXPECT_EQ(offsetof(EffectSuite, clipDefine), 2 * kPointer);
  EXPECT_EQ(offsetof(EffectSuite, clipGetImage), 5 * kPointer);
  EXPECT_EQ(offsetof(EffectSuite, abort), 8 * kPointer);
  EXPECT_EQ(sizeof(ParameterSuite), 18 * kPointer);
  EXPECT_EQ(offsetof(ParameterSuite, getValueAtTime), 5 * kPointer);
  EXPECT_EQ(offsetof(ParameterSuite, editEnd), 17 * kPointer);
  EXPECT_EQ(sizeof(MessageSuite), 3 * kPointer);
  EXPECT_EQ(sizeof(MemorySuite), 2 * kPointer);
  EXPECT_EQ(offsetof(MemorySuite, free), kPointer);
  EXPECT_EQ(sizeof(DrawSuite), 6 * kPointer);
  EXPECT_EQ(offsetof(DrawSuite, draw), 4 * kPointer);
  EXPECT_EQ(sizeof(Colour), 16u);
  EXPECT_EQ(sizeof(PointD), 16u);
}

TEST(OpenFxInterface, StatusesAndNamesAreThePublishedOnes) {
  EXPECT_EQ(kOk, 0);
  EXPECT_EQ(kMissingHostFeature, 4);
  EXPECT_EQ(kOutOfMemory, 8);
  EXPECT_EQ(kBadHandle, 9);
  EXPECT_EQ(kReplyDefault, 14);
  EXPECT_STREQ(kEffectApi, "OfxImageEffectPluginAPI");
  EXPECT_STREQ(action::kDescribeInContext, "OfxImageEffectActionDescribeInContext");
  EXPECT_STREQ(prop::kRenderWindow, "OfxImageEffectPropRenderWindow");
  EXPECT_STREQ(prop::kImageField, "OfxImagePropField");
  EXPECT_STREQ(prop::kOverlay, "OfxImageEffectPluginPropOverlayInteractV2");
  EXPECT_STREQ(value::kFieldLower, "OfxFieldLower");
  EXPECT_STREQ(value::kUnpremultiplied, "OfxImageAlphaUnPremultiplied");
}

}  // namespace
}  // namespace kelto::ofx
