// The vectors of the deep engine against its plain form, on every target that this machine has.
#include "targets/target.h"

#include <gtest/gtest.h>

#include "deep/plan.h"
#include "tests/deep/images.h"

namespace kelto {
namespace {

using test::LargestDifference;
using test::MakeDeepJob;
using test::MakePicture;
using test::RandomDeep;
using test::RenderedFrame;

constexpr double kOneUnit = 1.0 / 65535.0 * 1.0001;
constexpr double kOfFullScale = 1.0 / (1 << 20);

class DeepOnEveryTarget : public ::testing::TestWithParam<Target> {
 protected:
  ~DeepOnEveryTarget() override { SetTarget(AvailableTargets().back()); }
};

INSTANTIATE_TEST_SUITE_P(Targets, DeepOnEveryTarget, ::testing::ValuesIn(AvailableTargets()),
                         [](const auto& target) { return std::string(TargetName(target.param)); });

TEST_P(DeepOnEveryTarget, TheCodeThatDrawsIsTheTargetsOwn) {
  SetTarget(GetParam());
  RandomDeep random(1);
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    for (const DeepSample sample : {DeepSample::kUnsigned16, DeepSample::kFloat32}) {
      const DeepPicture picture = random.Picture(sample, true);
      DeepPicture frame(40, 30, sample, true);
      const DeepJob job =
          MakeDeepJob(test::WholeOf(picture.width(), picture.height()), 40, 30, mode);
      EXPECT_EQ(DrawDeep(PlanDeep(job, picture.view(), frame.view())), GetParam());
    }
  }
}

/// A job with all that a job can have.
DeepJob RandomJob(RandomDeep& random, const DeepPicture& picture) {
  const int32_t width = random.Whole(1, 90), height = 2 * random.Whole(1, 25);
  DeepJob job = MakeDeepJob(random.View(picture, width, height), width, height,
                            random.Whole(kFilterRealTime, kFilterUltraQual));
  job.fieldRows = random.Whole(kEvenRows, kAllRows);
  const float alpha = static_cast<float>(random.Whole(0, 2)) / 2.0f;
  for (size_t c = 0; c < 3; ++c) job.background[c] = static_cast<float>(random.Real(0, alpha));
  job.background[3] = alpha;
  return job;
}

void ExpectAsOnScalarTarget(Target target, DeepSample sample, bool linearLight, double tolerance) {
  RandomDeep random(20260714);
  for (int i = 0; i < 250; ++i) {
    const DeepPicture picture = random.Picture(sample, random.Whole(0, 1) == 1);
    DeepJob job = RandomJob(random, picture);
    job.linearLight = linearLight;
    const bool frameAlpha = random.Whole(0, 3) > 0;
    SetTarget(Target::kScalar);
    const DeepPicture expected = RenderedFrame(job, picture, sample, frameAlpha);
    SetTarget(target);
    const DeepPicture frame = RenderedFrame(job, picture, sample, frameAlpha);
    ASSERT_LE(LargestDifference(frame, expected), tolerance)
        << "job " << i << " filter " << job.filterMode;
  }
}

TEST_P(DeepOnEveryTarget, SixteenBitsComeWithinOneUnitOfThePlainEngine) {
  ExpectAsOnScalarTarget(GetParam(), DeepSample::kUnsigned16, false, kOneUnit);
}

TEST_P(DeepOnEveryTarget, FloatsComeWithinAMillionthOfThePlainEngine) {
  ExpectAsOnScalarTarget(GetParam(), DeepSample::kFloat32, false, kOfFullScale);
}

TEST_P(DeepOnEveryTarget, SixteenBitsInLinearLightComeWithinOneUnitOfThePlainEngine) {
  ExpectAsOnScalarTarget(GetParam(), DeepSample::kUnsigned16, true, kOneUnit);
}

TEST_P(DeepOnEveryTarget, ManyTapsKeepFloatsExact) {
  // Ultra Qual at 6: two hundred taps a row and column, of a picture near full scale.
  RandomDeep random(5);
  const DeepPicture picture =
      MakePicture(900, 700, DeepSample::kFloat32, false, [&](int32_t, int32_t) {
        return DeepPixel{random.Real(0.5, 1.0), 1.0, random.Real(0.0, 1.0), 1.0};
      });
  const DeepJob job = MakeDeepJob({10.25f, 20.75f, 850.0f, 680.0f}, 140, 110, kFilterUltraQual);
  SetTarget(Target::kScalar);
  const DeepPicture expected = RenderedFrame(job, picture, DeepSample::kFloat32);
  SetTarget(GetParam());
  EXPECT_LE(LargestDifference(RenderedFrame(job, picture, DeepSample::kFloat32), expected),
            kOfFullScale);
}

TEST_P(DeepOnEveryTarget, ConstantPicturesStayExactlyConstant) {
  SetTarget(GetParam());
  RandomDeep random(99);
  for (int i = 0; i < 150; ++i) {
    const double level = i % 3 == 0 ? 1.0 : random.Whole(0, 65535) / 65535.0;
    const DeepPixel pixel = {level, level, level, 1.0};
    const DeepPicture picture =
        MakePicture(random.Whole(1, 130), random.Whole(1, 130), DeepSample::kUnsigned16, i % 2 == 0,
                    [&](int32_t, int32_t) { return pixel; });
    DeepJob job = RandomJob(random, picture);
    job.background = {static_cast<float>(level), static_cast<float>(level),
                      static_cast<float>(level), 1.0f};
    const DeepPicture frame = RenderedFrame(job, picture, DeepSample::kUnsigned16);
    for (int32_t y = 0; y < frame.height(); ++y) {
      for (int32_t x = 0; x < frame.width(); ++x) {
        ASSERT_EQ(ReadPixel(frame.view(), x, y), pixel) << "job " << i;
      }
    }
  }
}

TEST_P(DeepOnEveryTarget, ResultsAreTheSameOnEveryRun) {
  SetTarget(GetParam());
  RandomDeep random(3);
  for (int i = 0; i < 20; ++i) {
    const DeepPicture picture = random.Picture(DeepSample::kFloat32, true);
    const DeepJob job = RandomJob(random, picture);
    EXPECT_TRUE(test::SameBits(RenderedFrame(job, picture, DeepSample::kFloat32),
                               RenderedFrame(job, picture, DeepSample::kFloat32)));
  }
}

/// Samples that end where their memory does: the address sanitizer sees any one more.
TEST_P(DeepOnEveryTarget, NothingIsReadOrWrittenPastTheLastPixel) {
  SetTarget(GetParam());
  for (int32_t width = 1; width <= 40; ++width) {
    std::vector<uint16_t> from(static_cast<size_t>(width) * 3 * 4, 30000);
    std::vector<uint16_t> to(from.size() + 8, 7);
    const DeepSource picture = {
        from.data(), width, 3, ptrdiff_t{8} * width, DeepSample::kUnsigned16, true};
    DeepTarget frame;
    frame.pixels = to.data() + 4;
    frame.width = width;
    frame.height = 3;
    frame.rowBytes = ptrdiff_t{8} * width;
    for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
      RenderDeep(MakeDeepJob(test::WholeOf(width, 3), width, 3, mode), picture, frame);
    }
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(to[i], 7);
      EXPECT_EQ(to[to.size() - 1 - i], 7);
    }
  }
}

}  // namespace
}  // namespace kelto
