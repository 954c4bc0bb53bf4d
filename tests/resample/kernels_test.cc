#include "resample/kernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "resample/registry.h"
#include "tests/resample/steps.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::Steps;

MitchellCoefficients DefaultMitchell() {
  MitchellCoefficients coefficients;
  MitchellInit(1.0f / 3.0f, 1.0f / 3.0f, &coefficients);
  return coefficients;
}

KaiserParameters DefaultKaiser() {
  KaiserParameters parameters;
  KaiserInit(6.5f, &parameters);
  return parameters;
}

// The sum of a kernel over all samples, seen from a position `phase` past one of them.
double SumOverSamples(KernelFunction kernel, float phase, const void* data = nullptr) {
  double sum = 0.0;
  for (int i = -4; i <= 4; ++i) sum += kernel(static_cast<float>(i) + phase, data);
  return sum;
}

TEST(Kernels, AgreeWithTheReferenceResults) {
  const std::map<std::string, KernelFunction> kernels = {
      {"box", KernelBox},           {"triangle", KernelTriangle}, {"quadratic", KernelQuadratic},
      {"cubic", KernelCubic},       {"catrom", KernelCatrom},     {"mitchell", KernelMitchell},
      {"gaussian", KernelGaussian}, {"sinc5", KernelSinc},        {"sinc16", KernelSinc},
      {"bessel", KernelBessel},     {"hanning", KernelHanning},   {"hamming", KernelHamming},
      {"blackman", KernelBlackman}, {"kaiser", KernelKaiser}};
  size_t compared = 0;
  for (const auto& reference : test::Vectors()["kernels"]) {
    const std::string name = reference["name"];
    SCOPED_TRACE(name);
    std::vector<float> floats;
    double lobes = 0.0;
    const void* data = &lobes;
    if (!reference["data"].is_null() && name.starts_with("sinc")) lobes = reference["data"][0];
    if (!reference["data"].is_null() && !name.starts_with("sinc")) {
      floats = reference["data"].get<std::vector<float>>();
      data = floats.data();
    }
    for (size_t i = 0; i < reference["x"].size(); ++i) {
      const float x = reference["x"][i];
      EXPECT_NEAR(kernels.at(name)(x, data), reference["y"][i].get<double>(), 2e-6) << "x = " << x;
      ++compared;
    }
  }
  EXPECT_GT(compared, kernels.size());
}

TEST(Kernels, BoxHoldsItsLeftEdgeAndNotItsRight) {
  EXPECT_EQ(KernelBox(-0.5f, nullptr), 1.0f);
  EXPECT_EQ(KernelBox(0.5f, nullptr), 0.0f);
  EXPECT_EQ(KernelBox(std::nextafter(0.5f, 0.0f), nullptr), 1.0f);
  EXPECT_EQ(KernelBox(std::nextafter(-0.5f, -1.0f), nullptr), 0.0f);
}

TEST(Kernels, TriangleIsZeroAtPlusAndMinusOne) {
  EXPECT_EQ(KernelTriangle(1.0f, nullptr), 0.0f);
  EXPECT_EQ(KernelTriangle(-1.0f, nullptr), 0.0f);
  EXPECT_EQ(KernelTriangle(0.0f, nullptr), 1.0f);
}

TEST(Kernels, QuadraticIsThreeQuartersAtZero) { EXPECT_EQ(KernelQuadratic(0.0f, nullptr), 0.75f); }

TEST(Kernels, CubicIsTwoThirdsAtZero) { EXPECT_FLOAT_EQ(KernelCubic(0.0f, nullptr), 2.0f / 3.0f); }

TEST(Kernels, CatromIsOneAtZeroAndZeroAtPlusAndMinusOne) {
  EXPECT_EQ(KernelCatrom(0.0f, nullptr), 1.0f);
  EXPECT_EQ(KernelCatrom(1.0f, nullptr), 0.0f);
  EXPECT_EQ(KernelCatrom(-1.0f, nullptr), 0.0f);
}

TEST(Kernels, MitchellIsEightNinthsAtZeroWithTheDefaultCoefficients) {
  const MitchellCoefficients coefficients = DefaultMitchell();
  EXPECT_FLOAT_EQ(KernelMitchell(0.0f, &coefficients), 8.0f / 9.0f);
}

TEST(Kernels, GaussianIsTheRootOfTwoOverPiAtZero) {
  EXPECT_EQ(KernelGaussian(0.0f, nullptr), 0.7978846f);
}

TEST(Kernels, SincIsOneAtZeroWhateverTheLobeCount) {
  for (const double lobes : {0.5, 1.0, 4.0, 5.0, 16.0}) {
    EXPECT_EQ(KernelSinc(0.0f, &lobes), 1.0f);
    EXPECT_EQ(KernelSinc(-0.0f, &lobes), 1.0f);
  }
}

TEST(Kernels, SincIsZeroAtTheOtherIntegersAndAtItsLastLobe) {
  for (const double lobes : {5.0, 16.0}) {
    for (int i = 1; i <= static_cast<int>(lobes); ++i) {
      EXPECT_NEAR(KernelSinc(static_cast<float>(i), &lobes), 0.0f, 1e-7f);
    }
  }
}

TEST(Kernels, BesselIsZeroEverywhere) {
  for (const float x : Steps(-4.0f, 4.0f, 0.125f)) EXPECT_EQ(KernelBessel(x, nullptr), 0.0f);
}

TEST(Kernels, KaiserIsOneAtZeroAndTheReciprocalOfI0AtItsEnds) {
  const KaiserParameters parameters = DefaultKaiser();
  EXPECT_FLOAT_EQ(KernelKaiser(0.0f, &parameters), 1.0f);
  const double expected = 1.0 / std::cyl_bessel_i(0.0, 6.5);
  EXPECT_NEAR(KernelKaiser(1.0f, &parameters), expected, 1e-8);
  EXPECT_NEAR(KernelKaiser(-1.0f, &parameters), expected, 1e-8);
}

TEST(Kernels, KaiserIsNotANumberBeyondItsEnds) {
  const KaiserParameters parameters = DefaultKaiser();
  EXPECT_TRUE(std::isnan(KernelKaiser(1.001f, &parameters)));
  EXPECT_TRUE(std::isnan(KernelKaiser(-3.0f, &parameters)));
}

TEST(Kernels, WindowsAreOneAtZeroAndFollowTheirCosinesOutsideTheUnitRange) {
  EXPECT_FLOAT_EQ(KernelHanning(0.0f, nullptr), 1.0f);
  EXPECT_FLOAT_EQ(KernelHamming(0.0f, nullptr), 1.0f);
  EXPECT_FLOAT_EQ(KernelBlackman(0.0f, nullptr), 1.0f);
  EXPECT_NEAR(KernelHanning(1.0f, nullptr), 0.0f, 1e-7f);
  EXPECT_NEAR(KernelHamming(-1.0f, nullptr), 0.08f, 1e-7f);
  EXPECT_NEAR(KernelBlackman(1.0f, nullptr), 0.0f, 1e-7f);
  EXPECT_FLOAT_EQ(KernelHanning(2.0f, nullptr), 1.0f);
}

TEST(Kernels, GaussianIsNotCutOffAtItsSupport) {
  EXPECT_NEAR(KernelGaussian(2.0f, nullptr), 0.7978845608 * std::exp(-8.0), 1e-9);
}

TEST(Kernels, SplinesSumToOneAtEveryPhase) {
  const MitchellCoefficients mitchell = DefaultMitchell();
  for (const float phase : Steps(-0.5f, 0.5f, 1.0f / 64.0f)) {
    EXPECT_EQ(SumOverSamples(KernelBox, phase), 1.0);
    EXPECT_NEAR(SumOverSamples(KernelTriangle, phase), 1.0, 1e-6);
    EXPECT_NEAR(SumOverSamples(KernelQuadratic, phase), 1.0, 1e-6);
    EXPECT_NEAR(SumOverSamples(KernelCubic, phase), 1.0, 1e-6);
    EXPECT_NEAR(SumOverSamples(KernelCatrom, phase), 1.0, 1e-6);
    EXPECT_NEAR(SumOverSamples(KernelMitchell, phase, &mitchell), 1.0, 1e-6);
  }
}

TEST(Kernels, PiecewiseKernelsAreContinuousWhereTheirPiecesMeet) {
  const MitchellCoefficients mitchell = DefaultMitchell();
  const KernelFunction kernels[] = {KernelTriangle, KernelQuadratic, KernelCubic, KernelCatrom,
                                    KernelMitchell};
  for (const KernelFunction kernel : kernels) {
    for (const float x : Steps(-2.0f, 2.0f, 0.5f)) {
      EXPECT_NEAR(kernel(std::nextafter(x, -9.0f), &mitchell), kernel(x, &mitchell), 1e-6f);
    }
  }
}

TEST(Kernels, PiecewiseKernelsAreZeroForAnArgumentThatIsNotANumber) {
  const MitchellCoefficients mitchell = DefaultMitchell();
  for (const KernelFunction kernel :
       {KernelBox, KernelTriangle, KernelQuadratic, KernelCubic, KernelCatrom, KernelMitchell}) {
    EXPECT_EQ(kernel(std::numeric_limits<float>::quiet_NaN(), &mitchell), 0.0f);
  }
}

TEST(MitchellInit, BAloneIsTheCubicBSplineAndCOneHalfCatmullRom) {
  MitchellCoefficients spline, catrom;
  MitchellInit(1.0f, 0.0f, &spline);
  MitchellInit(0.0f, 0.5f, &catrom);
  for (const float x : Steps(-2.5f, 2.5f, 0.0625f)) {
    EXPECT_NEAR(KernelMitchell(x, &spline), KernelCubic(x, nullptr), 1e-6f);
    EXPECT_NEAR(KernelMitchell(x, &catrom), KernelCatrom(x, nullptr), 1e-6f);
  }
}

TEST(BesselI0, AgreesWithTheStandardLibrary) {
  for (const float x : Steps(0.0f, 12.0f, 0.25f)) {
    const double expected = std::cyl_bessel_i(0.0, static_cast<double>(x));
    EXPECT_NEAR(BesselI0(x), expected, 2e-6 * expected);
    EXPECT_EQ(BesselI0(-x), BesselI0(x));
  }
}

TEST(BesselI0, IsOneWhereItsFirstTermIsTooSmall) {
  EXPECT_EQ(BesselI0(0.0f), 1.0f);
  EXPECT_EQ(BesselI0(6.3e-4f), 1.0f);  // first term 0.99e-7
  EXPECT_GT(BesselI0(6.4e-4f), 1.0f);  // first term 1.02e-7
}

// What every row of the registry promises about its kernel.
class BuiltInFilter : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    row_ = *FilterFind(GetParam());
    if (row_.kernel == KernelSinc) row_.clientData = &lobes_;
  }
  float At(float x) const { return row_.kernel(x, row_.clientData); }

  Filter row_;
  double lobes_ = 4.0;
};

TEST_P(BuiltInFilter, IsSymmetric) {
  for (const float x : Steps(0.0f, 1.0f, 1.0f / 64.0f)) {
    if (row_.kernel == KernelBox && x == 0.5f) continue;
    EXPECT_NEAR(At(-x), At(x), 1e-6f) << "x = " << x;
  }
}

TEST_P(BuiltInFilter, IsZeroBeyondItsSupportUnlessItsCallerCutsIt) {
  const KernelFunction cutByCaller[] = {KernelGaussian, KernelSinc,     KernelHanning,
                                        KernelHamming,  KernelBlackman, KernelKaiser};
  bool zero = true;
  for (const float x : Steps(row_.support + 0.001f, 9.0f, 0.25f)) {
    zero = zero && At(x) == 0.0f && At(-x) == 0.0f;
  }
  const bool isPoint = row_.support == 0.0f;  // the box, listed without a width
  EXPECT_EQ(zero, std::ranges::count(cutByCaller, row_.kernel) == 0 && !isPoint);
}

TEST_P(BuiltInFilter, IsListedAsInterpolatingWhenItIs) {
  // Hamming and Kaiser windows end slightly above zero and count as interpolating all the same.
  bool interpolating = std::abs(At(0.0f) - 1.0f) < 1e-6f;
  for (const float x : Steps(1.0f, row_.support, 1.0f)) {
    interpolating = interpolating && std::abs(At(x)) < 0.081f;
  }
  EXPECT_EQ(row_.interpolating, interpolating ? 1 : 0);
}

TEST_P(BuiltInFilter, IsListedAsUnitRangeWhenItIs) {
  if (row_.kernel == KernelBessel) {  // listed as the function it stands for
    EXPECT_EQ(row_.unitRange, 0);
    return;
  }
  bool unitRange = true;
  for (const float x : Steps(-row_.support, row_.support, 1.0f / 128.0f)) {
    unitRange = unitRange && At(x) > -1e-6f && At(x) < 1.0f + 1e-6f;
  }
  EXPECT_EQ(row_.unitRange, unitRange ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, BuiltInFilter,
                         testing::Values("point", "box", "triangle", "quadratic", "cubic", "catrom",
                                         "mitchell", "gaussian", "sinc", "bessel", "hanning",
                                         "hamming", "blackman", "kaiser"),
                         [](const auto& row) { return std::string(row.param); });

TEST(SincSteps, AgreeWithTheKernelAtEveryPlace) {
  for (const double a : {5.0, 16.0}) {
    for (const double step : {1.0, 0.9, 1 / 3.125, 1 / 6.0, 1e-3}) {
      const SincSteps steps(step, a);
      const auto count = static_cast<int32_t>(2 * a / step) + 1;
      std::vector<float> values(static_cast<size_t>(count));
      for (const double first : {-a, -a + 0.37, -a + 1e-7, -2 * step, 0.0}) {
        steps.Sample(first, count, values.data());
        for (int32_t i = 0; i < count; ++i) {
          const auto x = static_cast<float>(first + i * step);
          EXPECT_NEAR(values[static_cast<size_t>(i)], KernelSinc(x, &a), 1e-6f) << x;
        }
      }
    }
  }
}

}  // namespace
}  // namespace kelto
