// Weight tables in fixed point: sums are exact, errors bounded, and bytes make the same weights.
#include "resample/fixed_weights.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "resample/filtered.h"
#include "resample/resample.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::PlanOf;
using test::SourceImage;
using test::WholeFrame;

/// The tables of a 6000 x 4000 picture in a 1920 x 1080 frame at a scale, `left` and `top` source
/// pixels of the frame outside it.
std::optional<FixedFilters> FixedFiltersFor(int32_t mode, float scale, float left = 0.0f,
                                            float top = 0.0f) {
  static SourceImage image(1, 1);
  ResampleJob job;
  job.filterMode = mode;
  job.source = {image.bytes.data(), 6000, 4000, 24000};
  job.dest = {image.bytes.data(), 1920, 1080, 3840};
  job.sourceRect = {0.5f - left, 0.5f - top, 1920 * scale - left - 0.5f, 1080 * scale - top - 0.5f};
  job.destRect = WholeFrame(1920, 1080);
  const FilteredPlan plan = PlanOf(job, PixelFormat::kPacked422);
  return MakeFixedFilters(plan.columnWeights, plan.rowWeights);
}

TEST(FixedFilters, AreExactEnoughForEveryFilterAtEveryUsualScale) {
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    for (const float scale : {0.05f, 1 / 6.0f, 0.5f, 1 / 1.5f, 1.0f, 1.5f, 3.125f, 6.0f, 12.0f}) {
      EXPECT_TRUE(FixedFiltersFor(mode, scale).has_value()) << mode << " at " << scale;
    }
  }
}

TEST(FixedFilters, AreExactEnoughWherePicturesEndWithinTheFrame) {
  // The pixels at the edge bear nearly all weight beside hundreds of small ones, more or less of it
  // from scale to scale.
  for (const int32_t mode : {kFilterHiQual, kFilterUltraQual}) {
    for (float scale = 4.0f; scale < 90.0f; scale *= 1.04f) {
      const float left = 6.3f * scale + 40.0f, top = 5.9f * scale + 11.0f;
      EXPECT_TRUE(FixedFiltersFor(mode, scale, left, top).has_value()) << mode << " at " << scale;
    }
  }
}

TEST(FixedFilters, KeepSumsExact) {
  const auto sumOf = [](int32_t word) {
    return static_cast<int16_t>(word & 0xFFFF) + (word >> 16);
  };
  size_t heavy = 0;
  for (const int32_t mode : {kFilterTriangle, kFilterHiQual, kFilterUltraQual}) {
    for (const float scale : {3.125f, 12.41f}) {
      const FixedFilters filters = FixedFiltersFor(mode, scale, 130.0f, 170.0f).value();
      for (const FixedWeights* weights : {&filters.columns, &filters.rows}) {
        const int32_t words = weights == &filters.columns ? 2 : 1;
        for (const FixedWeights::Entry& entry : weights->entries) {
          int32_t sum = 0;
          for (int32_t i = 0; i < entry.groups * words; ++i) sum += sumOf(weights->Words(entry)[i]);
          for (const FixedWeights::Extra& extra : weights->Extras(entry)) {
            ASSERT_LT(extra.group, entry.groups);
            sum += sumOf(extra.words[0]) + sumOf(extra.words[1]);
          }
          ASSERT_EQ(sum, 1 << entry.shift);
          heavy += entry.extraCount;
        }
      }
    }
  }
  EXPECT_GT(heavy, 0U) << "no weight needs more than its word";
}

TEST(FixedFilters, AreRefusedWhereWeightsNearlyCancel) {
  const WeightTable good = {{{0, 2, 0, 1.0f}}, {0.5f, 0.5f}};
  const WeightTable cancelling = {{{0, 2, 0, 5000.0f}}, {1.0001f, -0.9999f}};
  EXPECT_TRUE(MakeFixedFilters(good, good).has_value());
  EXPECT_FALSE(MakeFixedFilters(cancelling, good).has_value());
  EXPECT_FALSE(MakeFixedFilters(good, cancelling).has_value());
}

/// The four weights of a group's two words of pairs.
std::vector<int32_t> WeightsOfPairs(const int32_t* words) {
  return {static_cast<int16_t>(words[0] & 0xFFFF), static_cast<int16_t>(words[1] & 0xFFFF),
          words[0] >> 16, words[1] >> 16};
}

/// The four weights of a group's two words of bytes.
std::vector<int32_t> WeightsOfBytes(const int32_t* words) {
  const auto byte = [](int32_t word, int pixel) {
    return static_cast<int8_t>(static_cast<uint32_t>(word) >> (8 * pixel) & 0xFF);
  };
  std::vector<int32_t> weights;
  for (int pixel = 0; pixel < 4; ++pixel) {
    weights.push_back(byte(words[0], pixel) + 256 * byte(words[1], pixel));
  }
  return weights;
}

/// What each group of four pixels of the image is multiplied by in an entry.
template <typename WeightsOf>
std::map<int32_t, std::vector<int32_t>> WeightsOfGroups(const FixedWeights& table,
                                                        const FixedWeights::Entry& entry,
                                                        WeightsOf weightsOf) {
  std::map<int32_t, std::vector<int32_t>> groups;
  const auto add = [&](int32_t group, const int32_t* words) {
    std::vector<int32_t>& sums = groups[entry.firstGroup + group];
    sums.resize(4);
    const std::vector<int32_t> weights = weightsOf(words);
    for (size_t i = 0; i < 4; ++i) sums[i] += weights[i];
  };
  for (int32_t group = 0; group < entry.groups; ++group) {
    add(group, table.Words(entry) + 2 * group);
  }
  for (const FixedWeights::Extra& extra : table.Extras(entry)) add(extra.group, extra.words);
  // A group of which nothing is taken is as good as none.
  std::erase_if(groups,
                [](const auto& group) { return group.second == std::vector<int32_t>(4, 0); });
  return groups;
}

TEST(WeightsInBytes, MakeTheSameWeightsOfTheSamePixels) {
  for (const int32_t mode : {kFilterTriangle, kFilterHiQual, kFilterUltraQual}) {
    for (const float scale : {0.3f, 1.0f, 3.125f, 12.41f}) {
      for (const float outside : {0.0f, 130.0f}) {
        const FixedWeights pairs = FixedFiltersFor(mode, scale, outside)->columns;
        const FixedWeights bytes = InBytes(pairs);
        ASSERT_EQ(bytes.entries.size(), pairs.entries.size());
        EXPECT_EQ(bytes.base, pairs.base);
        for (size_t i = 0; i < pairs.entries.size(); ++i) {
          EXPECT_EQ(bytes.entries[i].shift, pairs.entries[i].shift);
          ASSERT_EQ(WeightsOfGroups(bytes, bytes.entries[i], WeightsOfBytes),
                    WeightsOfGroups(pairs, pairs.entries[i], WeightsOfPairs))
              << mode << " at " << scale << ", column " << i;
        }
      }
    }
  }
}

TEST(WeightsInBytes, TakeAFurtherWordWhereAWeightIsTooLargeForTwoBytes) {
  // 0.998 of 1 << 15: half a word has room for it, two signed bytes have not.
  const WeightTable columns = {{{0, 2, 0, 1.0f}}, {0.998f, 0.002f}};
  const FixedWeights pairs = MakeFixedFilters(columns, columns)->columns;
  ASSERT_EQ(pairs.entries[0].shift, 15);
  EXPECT_EQ(pairs.entries[0].extraCount, 1U);
  const FixedWeights bytes = InBytes(pairs);
  const auto groups = WeightsOfGroups(bytes, bytes.entries[0], WeightsOfBytes);
  EXPECT_EQ(groups.at(0), (std::vector<int32_t>{32702, 66, 0, 0}));
}

TEST(WeightsInBytes, NearlyAllTakeAsManyGroups) {
  // 35 taps, in nine or ten groups.
  const FixedWeights pairs = FixedFiltersFor(kFilterHiQual, 3.3f)->columns;
  const FixedWeights bytes = InBytes(pairs);
  const auto shorter = [](const FixedWeights& table) {
    int32_t most = 0;
    for (const FixedWeights::Entry& entry : table.entries) most = std::max(most, entry.groups);
    return std::count_if(table.entries.begin(), table.entries.end(),
                         [&](const FixedWeights::Entry& entry) { return entry.groups < most; });
  };
  EXPECT_GT(shorter(pairs), 100);
  EXPECT_LT(shorter(bytes), 20);
  int32_t end = 0, endOfPairs = 0;
  for (size_t i = 0; i < pairs.entries.size(); ++i) {
    ASSERT_GE(bytes.entries[i].firstGroup, 0);
    ASSERT_LE(bytes.entries[i].keep, bytes.entries[i].firstGroup);
    end = std::max(end, bytes.entries[i].firstGroup + bytes.entries[i].groups);
    endOfPairs = std::max(endOfPairs, pairs.entries[i].firstGroup + pairs.entries[i].groups);
  }
  EXPECT_LE(end, endOfPairs) << "pixels that the image has not";
}

}  // namespace
}  // namespace kelto
