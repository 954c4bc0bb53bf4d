#include "resample/weights.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "tests/support/vectors.h"

namespace kelto {
namespace {

/// An axis over a whole image of `size` pixels that samples position p at pixel p's number.
AxisFilter AxisOf(int32_t mode, float scale, int32_t size) {
  const FilterSpec& filter = *FrameFilter(mode);
  return {filter, {0.5f, 0.5f, scale}, {0, size - 1, size}, AxisTapRange(filter, scale)};
}

TEST(TapRange, OfAGaussianThatDoesNotMinifyIsMinusOneToOneWhateverTheRegistrySays) {
  for (const float scale : {0.1f, 0.5f, 1.0f}) {
    const TapRange taps = AxisTapRange(*FrameFilter(kFilterGaussian), scale);
    EXPECT_EQ(taps.lo, -1);
    EXPECT_EQ(taps.hi, 1);
  }
}

TEST(TapRange, OfACubicThatMinifiesByThreeIsMinusSixToSix) {
  const TapRange taps = AxisTapRange(*FrameFilter(kFilterCubic), 3.0f);
  EXPECT_EQ(taps.lo, -6);
  EXPECT_EQ(taps.hi, 6);
}

TEST(TapRange, OfAReductionHasItsOwnBoundsAndAOneSidedTriangle) {
  const std::map<int32_t, std::pair<int, int>> bounds = {
      {kFilterTriangle, {-1, 0}},   {kFilterQuadratic, {-2, 2}}, {kFilterCubic, {-2, 2}},
      {kFilterCatmull, {-2, 2}},    {kFilterGaussian, {-2, 2}},  {kFilterHiQual, {-5, 5}},
      {kFilterUltraQual, {-16, 16}}};
  for (const auto& [mode, expected] : bounds) {
    const TapRange taps = AxisTapRange(*ReductionFilter(mode), 1.0f);
    EXPECT_EQ(taps.lo, expected.first) << mode;
    EXPECT_EQ(taps.hi, expected.second) << mode;
  }
  const TapRange widened = AxisTapRange(*ReductionFilter(kFilterTriangle), 3.0f);
  EXPECT_EQ(widened.lo, -3);
  EXPECT_EQ(widened.hi, 0);
}

TEST(TapRange, IsSharedByBothAxesAndIsTheOneThatBeginsLower) {
  const TapRange narrow = {-2, 2}, wide = {-6, 6};
  EXPECT_EQ(CommonTapRange(narrow, wide).lo, -6);
  EXPECT_EQ(CommonTapRange(narrow, wide).hi, 6);
  EXPECT_EQ(CommonTapRange(wide, narrow).hi, 6);
  EXPECT_EQ(CommonTapRange({-3, 0}, {-2, 4}).hi, 0);
}

TEST(TapRange, StaysBoundedAtAnyScale) {
  for (const float scale : {1e5f, 1e12f, 1e30f, INFINITY, NAN}) {
    const TapRange taps = AxisTapRange(*FrameFilter(kFilterUltraQual), scale);
    EXPECT_GE(taps.lo, -(1 << 18)) << scale;
    EXPECT_LE(taps.hi, 1 << 18) << scale;
  }
}

TEST(FilterMode, OutsideOneToSevenHasNoFilter) {
  for (const int32_t mode : {-2147483647, -1, 0, 8, 2147483647}) {
    EXPECT_EQ(FrameFilter(mode), nullptr);
    EXPECT_EQ(ReductionFilter(mode), nullptr);
  }
}

TEST(ListTaps, AgreesWithReferenceResults) {
  for (const nlohmann::json& c : test::Vectors()["weights"]) {
    SCOPED_TRACE("mode " + c["mode"].dump() + " scale " + c["scale"].dump());
    const int32_t samples = c["m"].get<int32_t>() + 1;
    AxisFilter axis = AxisOf(c["mode"], c["scale"], samples);
    const int64_t base = c["base"];
    axis.samples = {base, samples - 1, samples + static_cast<int32_t>(base)};
    EXPECT_EQ(axis.taps.lo, c["lo"].get<int>());
    EXPECT_EQ(axis.taps.hi, c["hi"].get<int>());
    std::vector<Tap> taps;
    for (size_t i = 0; i < c["p"].size(); ++i) {
      const float normaliser = ListTaps(axis, c["p"][i], taps);
      const float expected = c["norm"][i];
      EXPECT_NEAR(normaliser, expected, 1e-5f * expected);
      ASSERT_EQ(taps.size(), c["weight"][i].size());
      for (size_t k = 0; k < taps.size(); ++k) {
        EXPECT_EQ(taps[k].imagePixel, base + c["index"][i][k].get<int64_t>());
        EXPECT_NEAR(taps[k].weight, c["weight"][i][k].get<float>(), 2e-6f);
      }
    }
  }
}

TEST(ListTaps, CountsTapZeroAloneWhereTheWeightsSumToNothing) {
  const FilterSpec nothing = {[](float, const void*) { return 0.0f; }, nullptr, -2.0f, 2.0f};
  const AxisFilter axis = {nothing, {0.5f, 0.5f, 1.0f}, {0, 9, 10}, AxisTapRange(nothing, 1.0f)};
  std::vector<Tap> taps;
  EXPECT_EQ(ListTaps(axis, 5.25f, taps), 1.0f);
  for (size_t k = 0; k < taps.size(); ++k) {
    EXPECT_EQ(taps[k].weight, k == 2 ? 1.0f : 0.0f);
  }
  EXPECT_EQ(taps[2].imagePixel, 5);
}

TEST(MirrorIndex, ReflectsAtBothEndsAsOftenAsItTakes) {
  EXPECT_EQ(MirrorIndex(-3, 9), 3);
  EXPECT_EQ(MirrorIndex(12, 9), 6);
  EXPECT_EQ(MirrorIndex(-12, 9), 6);
  for (int64_t index = -100; index <= 100; ++index) {
    int64_t expected = index;
    while (expected < 0 || expected > 4) expected = expected < 0 ? -expected : 8 - expected;
    EXPECT_EQ(MirrorIndex(index, 4), expected) << index;
  }
}

TEST(MirrorIndex, OfASingleSampleIsZero) {
  for (const int64_t index : {-7, -1, 0, 1, 8}) EXPECT_EQ(MirrorIndex(index, 0), 0);
}

TEST(SampleRange, RepeatsTheEdgePixelForRowsOutsideTheImage) {
  const SampleRange rows = {-5, 19, 10};  // a rectangle from row -5 to row 14 of ten
  EXPECT_EQ(rows.ImagePixel(0), 0);
  EXPECT_EQ(rows.ImagePixel(4), 0);
  EXPECT_EQ(rows.ImagePixel(7), 2);
  EXPECT_EQ(rows.ImagePixel(19), 9);
  EXPECT_EQ(rows.ImagePixel(-7), 2) << "mirrored at the rectangle's first row";
}

TEST(WeightTable, MergesTheTapsOfEveryPixelIntoARunOverTheImage) {
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    for (const float scale : {0.3f, 1.0f, 1.7f, 9.0f}) {
      const AxisFilter axis = AxisOf(mode, scale, 23);
      const int32_t pixels = static_cast<int32_t>(23 / scale);
      const WeightTable table = BuildWeightTable(axis, 0, pixels, 1);
      std::vector<Tap> taps;
      for (int32_t pixel = 0; pixel < pixels; ++pixel) {
        const WeightTable::Entry& entry = table.entries[static_cast<size_t>(pixel)];
        const float normaliser = ListTaps(axis, axis.map.At(pixel), taps);
        EXPECT_NEAR(entry.normaliser, normaliser, 1e-5f * normaliser);
        std::map<int32_t, float> expected;
        for (const Tap& tap : taps) expected[tap.imagePixel] += tap.weight;
        ASSERT_GE(entry.first, 0);
        ASSERT_LE(entry.first + entry.count, 23);
        for (int32_t i = 0; i < 23; ++i) {
          const bool inRun = i >= entry.first && i < entry.first + entry.count;
          const float weight = inRun ? table.Weights(entry)[i - entry.first] : 0.0f;
          EXPECT_NEAR(weight, expected[i], 2e-6f);
        }
      }
    }
  }
}

TEST(WeightTable, OfAFieldHoldsEverySecondPixelOfTheFrame) {
  const AxisFilter axis = AxisOf(kFilterHiQual, 0.6f, 30);
  const WeightTable frame = BuildWeightTable(axis, 0, 40, 1);
  const WeightTable odd = BuildWeightTable(axis, 1, 20, 2);
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(odd.entries[i].first, frame.entries[2 * i + 1].first);
    EXPECT_EQ(odd.entries[i].normaliser, frame.entries[2 * i + 1].normaliser);
  }
}

TEST(WeightTable, IsNeverLargerThanTheImageForEachPixel) {
  const WeightTable table = BuildWeightTable(AxisOf(kFilterUltraQual, 1e6f, 50), 0, 1, 1);
  EXPECT_LE(table.weights.size(), 50u);
}

}  // namespace
}  // namespace kelto
