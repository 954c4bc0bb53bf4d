// The vector engine against the scalar one, on every target that this machine has.
#include "targets/target.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

#include "resample/filtered.h"
#include "resample/nearest_pixels.h"
#include "resample/resample.h"
#include "tests/resample/buffers.h"

namespace kelto {
namespace {

using test::GuardedBuffer;
using test::LargestDifference;
using test::MakeJob;
using test::PlanOf;
using test::SourceImage;
using test::WholeFrame;

class OnEveryTarget : public ::testing::TestWithParam<Target> {
 protected:
  ~OnEveryTarget() override { SetTarget(AvailableTargets().back()); }
};

INSTANTIATE_TEST_SUITE_P(Targets, OnEveryTarget, ::testing::ValuesIn(AvailableTargets()),
                         [](const auto& target) { return std::string(TargetName(target.param)); });

TEST(Targets, BeginWithTheScalarEngineAndTheLastOneRunsUnasked) {
  const std::vector<Target> targets = AvailableTargets();
  EXPECT_EQ(targets.front(), Target::kScalar);
  EXPECT_EQ(CurrentTarget(), targets.back());
}

TEST(Targets, ThatTheMachineLacksAreRefused) {
  for (const Target target : {Target::kSse4, Target::kAvx2, Target::kAvx512, Target::kAvx512Vnni}) {
    const std::vector<Target> targets = AvailableTargets();
    if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
      EXPECT_THROW(SetTarget(target), std::invalid_argument) << TargetName(target);
    }
  }
}

#if defined(KELTO_HIGHWAY) && (defined(__x86_64__) || defined(__i386__))
TEST(Targets, AreAllThatTheProcessorReports) {
  const std::vector<Target> targets = AvailableTargets();
  const auto available = [&](Target target) {
    return std::find(targets.begin(), targets.end(), target) != targets.end();
  };
  EXPECT_EQ(available(Target::kSse4), __builtin_cpu_supports("sse4.2") &&
                                          __builtin_cpu_supports("aes") &&
                                          __builtin_cpu_supports("pclmul"));
  EXPECT_EQ(available(Target::kAvx2), available(Target::kSse4) && __builtin_cpu_supports("avx2") &&
                                          __builtin_cpu_supports("fma") &&
                                          __builtin_cpu_supports("bmi2"));
#if defined(__i386__)
  EXPECT_FALSE(available(Target::kAvx512)) << "its instructions need 64 bits";
#else
  EXPECT_EQ(available(Target::kAvx512),
            available(Target::kAvx2) && __builtin_cpu_supports("avx512bw") &&
                __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"));
#endif
}
#endif

TEST_P(OnEveryTarget, TheCodeThatDrawsIsTheTargetsOwn) {
  SetTarget(GetParam());
  EXPECT_EQ(CurrentTarget(), GetParam());
  SourceImage image(97, 61, [](int x, int y, int c) { return (x * 7 + y * 31 + c) % 256; });
  GuardedBuffer dest(150, 80, 4);
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    ResampleJob job = MakeJob(image, {3.5f, 2.5f, 90.0f, 55.0f}, dest, 150, 80, mode);
    for (const PixelFormat format : {PixelFormat::kPacked422, PixelFormat::kFourByte}) {
      EXPECT_EQ(DrawFiltered(PlanOf(job, format)), GetParam()) << "mode " << mode;
    }
  }
  const std::vector<int32_t> columns(97, 0);
  EXPECT_EQ(NearestPixels(image.bytes.data(), columns, kWholePixels, dest.Pixels()), GetParam());
}

TEST_P(OnEveryTarget, FramesComeFromTheCodeThatTheTargetNames) {
  // Fixed point does not round all of a noise's pixels as floating point does.
  std::mt19937 random(1);
  SourceImage image(97, 61, [&](int, int, int) { return static_cast<double>(random() & 255); });
  for (int32_t mode = kFilterTriangle; mode <= kFilterUltraQual; ++mode) {
    GuardedBuffer scalar(150, 80, 2), dest(150, 80, 2);
    ResampleJob job = MakeJob(image, {3.5f, 2.5f, 90.0f, 55.0f}, scalar, 150, 80, mode);
    SetTarget(Target::kScalar);
    ResampleTo422(job);
    job.dest.pixels = dest.Pixels();
    SetTarget(GetParam());
    ResampleTo422(job);
    EXPECT_EQ(dest.Packed() == scalar.Packed(), GetParam() == Target::kScalar) << "mode " << mode;
  }
}

class RandomPictures {
 public:
  explicit RandomPictures(uint32_t seed) : random_(seed) {}
  int32_t Whole(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random_);
  }
  float Real(float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random_);
  }
  /// Noise, stripes of full contrast or a slope: what rounding of weights tells on most.
  SourceImage Image() {
    const int32_t kind = Whole(0, 2), period = Whole(1, 9);
    return {Whole(1, 150), Whole(1, 120), [&](int x, int y, int c) {
              if (kind == 0) return Whole(0, 255);
              if (kind == 1) return (x / period + y / period + c) % 2 * 255;
              return (x * 3 + y * 5 + c * 60) % 256;
            }};
  }
  /// Source pixels a pixel: mostly 1/6 to 6, now and then up to 30.
  float Scale() { return std::exp(Whole(0, 4) == 0 ? Real(1.8f, 3.4f) : Real(-1.8f, 1.8f)); }
  /// A view inside the image or across its edges.
  RectF View(const SourceImage& image, int32_t width, int32_t height) {
    const float scaleX = Scale();
    const float scaleY = Whole(0, 2) == 0 ? Scale() : scaleX;
    const float w = static_cast<float>(width) * scaleX, h = static_cast<float>(height) * scaleY;
    const float x = Real(-0.7f * w, static_cast<float>(image.width) - 0.3f * w);
    const float y = Real(-0.7f * h, static_cast<float>(image.height) - 0.3f * h);
    return {x + 0.5f, y + 0.5f, x + w - 0.5f, y + h - 0.5f};
  }

 private:
  std::mt19937 random_;
};

TEST_P(OnEveryTarget, RandomJobsComeWithinOneLevelOfTheScalarEngine) {
  RandomPictures random(20241107);
  for (int i = 0; i < 700; ++i) {
    SourceImage image = random.Image();
    const int32_t width = random.Whole(1, 90), rows = random.Whole(1, 50);
    const int32_t mode = random.Whole(kFilterRealTime, kFilterUltraQual);
    const int32_t field = random.Whole(kEvenRows, kAllRows);
    const int32_t entry = random.Whole(0, 2);
    const int32_t height = field == kAllRows ? rows : 2 * rows;
    const auto padding = static_cast<size_t>(random.Whole(0, 9));
    const bool bottomUp = random.Whole(0, 1) == 1;
    GuardedBuffer expected(width, rows, entry == 0 ? 2 : 4, padding, bottomUp);
    GuardedBuffer dest(width, rows, entry == 0 ? 2 : 4, padding, bottomUp);
    ResampleJob job =
        MakeJob(image, random.View(image, width, height), expected, width, height, mode);
    if (random.Whole(0, 3) == 0) {
      job.source.pixels += (image.height - 1) * job.source.rowBytes;
      job.source.rowBytes = -job.source.rowBytes;
    }
    job.fieldRows = field;
    job.interlaceSelector = field == kAllRows ? 0 : 2;
    job.chroma = {random.Whole(1, 2), random.Whole(1, 2)};
    job.background.selector = 1;
    for (uint8_t& byte : job.background.bytes) byte = static_cast<uint8_t>(random.Whole(0, 255));
    const auto draw = entry == 0 ? ResampleTo422 : entry == 1 ? ResampleTo4Byte : ReduceImage;
    SetTarget(Target::kScalar);
    draw(job);
    job.dest.pixels = dest.Pixels();
    SetTarget(GetParam());
    draw(job);
    dest.ExpectGuardsUntouched();
    const test::Difference difference = LargestDifference(dest.Packed(), expected.Packed());
    ASSERT_LE(difference.most, mode == kFilterRealTime ? 0 : 1)
        << "job " << i << " mode " << mode << " byte " << difference.place;
  }
}

TEST_P(OnEveryTarget, ResultsAreTheSameAsOnEveryOtherVectorTargetAndRun) {
  // The scalar engine rounds otherwise: of it, only the second run is compared.
  const bool scalar = GetParam() == Target::kScalar;
  RandomPictures random(4711);
  for (int i = 0; i < 60; ++i) {
    SourceImage image = random.Image();
    const int32_t width = random.Whole(1, 200), height = random.Whole(1, 90);
    GuardedBuffer expected(width, height, 2), dest(width, height, 2);
    ResampleJob job = MakeJob(image, random.View(image, width, height), expected, width, height,
                              random.Whole(kFilterTriangle, kFilterUltraQual));
    SetTarget(scalar ? Target::kScalar : AvailableTargets().back());
    ResampleTo422(job);
    job.dest.pixels = dest.Pixels();
    SetTarget(GetParam());
    ResampleTo422(job);
    ASSERT_EQ(dest.Packed(), expected.Packed()) << "job " << i;
    ResampleTo422(job);
    ASSERT_EQ(dest.Packed(), expected.Packed()) << "job " << i << " again";
  }
}

TEST_P(OnEveryTarget, ConstantPicturesStayExactlyConstant) {
  SetTarget(GetParam());
  RandomPictures random(99);
  for (int i = 0; i < 200; ++i) {
    const int32_t level = i % 2 == 0 ? random.Whole(0, 255) : i % 4 == 1 ? 255 : 0;
    SourceImage image(random.Whole(1, 130), random.Whole(1, 130),
                      [&](int, int, int) { return level; });
    const int32_t width = random.Whole(1, 70), height = random.Whole(1, 50);
    GuardedBuffer dest(width, height, 4);
    ResampleJob job = MakeJob(image, random.View(image, width, height), dest, width, height,
                              random.Whole(kFilterRealTime, kFilterUltraQual));
    job.background.selector = 1;
    std::fill_n(job.background.bytes, 4, static_cast<uint8_t>(level));
    ResampleTo4Byte(job);
    for (const uint8_t byte : dest.Packed()) ASSERT_EQ(byte, level) << "job " << i;
  }
}

TEST_P(OnEveryTarget, NothingIsReadPastTheLastPixelOfAnImage) {
  SetTarget(GetParam());
  for (int32_t width = 1; width <= 40; ++width) {
    // Exactly as large as it must be: the address sanitizer sees any byte more.
    SourceImage image(width, 3, [](int x, int y, int c) { return (x * 7 + y * 31 + c) % 256; });
    GuardedBuffer dest(width, 3, 2);
    for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
      ResampleTo422(MakeJob(image, WholeFrame(width, 3), dest, width, 3, mode));
    }
    dest.ExpectGuardsUntouched();
  }
}

TEST_P(OnEveryTarget, ColumnsMayBeMadeOfPixelsFarApart) {
  SetTarget(GetParam());
  SourceImage image(2000, 2, [](int x, int, int c) { return (x / 8 + 60 * c) % 256; });
  GuardedBuffer dest(4, 1, 4);
  FilteredPlan plan;
  plan.source = image.Block();
  plan.canvas.pixels = dest.Pixels();
  plan.canvas.width = 4;
  plan.canvas.rows = 1;
  plan.canvas.rowBytes = dest.RowDelta();
  plan.canvas.format = PixelFormat::kFourByte;
  plan.columns = {0, 4};
  plan.rows = {0, 1};
  plan.columnWeights = {{{8, 2, 0, 1.0f}, {720, 2, 0, 1.0f}, {808, 2, 0, 1.0f}, {1600, 2, 0, 1.0f}},
                        {0.5f, 0.5f}};
  plan.rowWeights = {{{0, 2, 0, 1.0f}}, {0.5f, 0.5f}};
  plan.columnCoverage.assign(4, 1.0f);
  plan.rowCoverage.assign(1, 1.0f);
  DrawFiltered(plan);
  for (const auto& [column, pixel] : {std::pair(0, 8), {1, 720}, {2, 808}, {3, 1600}}) {
    for (int c = 0; c < 4; ++c) {
      EXPECT_EQ(dest.Row(0)[4 * column + c], (pixel / 8 + 60 * c) % 256) << column << ", " << c;
    }
  }
  dest.ExpectGuardsUntouched();
}

}  // namespace
}  // namespace kelto
