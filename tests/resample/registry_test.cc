#include "resample/registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "tests/resample/steps.h"

namespace kelto {
namespace {

using test::Steps;
using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Each test starts from, and leaves, the registry of a fresh process.
class Registry : public testing::Test {
 protected:
  void SetUp() override { ProcessFilters() = BuiltInFilters(); }
  void TearDown() override { ProcessFilters() = BuiltInFilters(); }

  template <typename Call>
  static std::string ErrorsOf(Call call) {
    CaptureStderr();
    call();
    return GetCapturedStderr();
  }
};

Filter Named(const char* name) {
  Filter row = *FilterFind("triangle");
  row.name = name;
  return row;
}

TEST_F(Registry, IsNotCountedUntilItIsFirstUsed) {
  EXPECT_EQ(ProcessFilters().count, 0);
  FilterFind("box");
  EXPECT_EQ(ProcessFilters().count, 14);
}

TEST_F(Registry, ListsFourteenFiltersInOrder) {
  const char* names[] = {"point",   "box",      "triangle", "quadratic", "cubic",
                         "catrom",  "mitchell", "gaussian", "sinc",      "bessel",
                         "hanning", "hamming",  "blackman", "kaiser"};
  FilterFind("box");
  ASSERT_EQ(ProcessFilters().count, 14);
  for (size_t i = 0; i < 14; ++i) {
    EXPECT_STREQ(ProcessFilters().rows[i].name, names[i]);
    EXPECT_EQ(FilterFind(names[i]), &ProcessFilters().rows[i]);
    EXPECT_EQ(ProcessFilters().rows[i].blur, 1.0f);
  }
  for (size_t i = 14; i < kMostFilters; ++i) EXPECT_EQ(ProcessFilters().rows[i].name, nullptr);
}

TEST_F(Registry, PointAndBoxDifferInSupportAlone) {
  EXPECT_EQ(FilterFind("point")->kernel, FilterFind("box")->kernel);
  EXPECT_EQ(FilterFind("point")->support, 0.0f);
  EXPECT_EQ(FilterFind("box")->support, 0.5f);
}

TEST_F(Registry, FindsNamesByteForByte) {
  EXPECT_NE(FilterFind("sinc"), nullptr);
  EXPECT_EQ(FilterFind("Sinc"), nullptr);
  EXPECT_EQ(FilterFind("sin"), nullptr);
  EXPECT_EQ(FilterFind(""), nullptr);
}

TEST_F(Registry, FindingAnUnknownNamePrintsNothing) {
  EXPECT_EQ(ErrorsOf([] { FilterFind("nearest"); }), "");
}

TEST_F(Registry, OnlyMitchellAndKaiserHaveParameters) {
  FilterFind("box");
  for (int i = 0; i < 14; ++i) {
    const Filter& row = ProcessFilters().rows[i];
    const bool expected = row.kernel == KernelMitchell || row.kernel == KernelKaiser;
    EXPECT_EQ(row.init != nullptr, expected) << row.name;
    EXPECT_EQ(row.print != nullptr, expected) << row.name;
    EXPECT_EQ(row.clientData != nullptr, expected) << row.name;
  }
}

TEST_F(Registry, MitchellStartsFromOneThirdAndOneThird) {
  const auto& c = *static_cast<const MitchellCoefficients*>(FilterFind("mitchell")->clientData);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.p0), 0x3F638E39u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.p2), 0xC0000000u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.p3), 0x3F955555u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.q0), 0x3FE38E39u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.q1), 0xC0555555u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.q2), 0x40000000u);
  EXPECT_EQ(std::bit_cast<uint32_t>(c.q3), 0xBEC71C71u);
}

TEST_F(Registry, KaiserStartsFromSixAndAHalf) {
  const auto& parameters = *static_cast<const KaiserParameters*>(FilterFind("kaiser")->clientData);
  EXPECT_EQ(parameters.a, 6.5f);
  EXPECT_NEAR(parameters.i0a, 1.0 / std::cyl_bessel_i(0.0, 6.5), 1e-8);
}

TEST_F(Registry, RowsSetTheirParametersThroughInitUntilTheRegistryStartsAgain) {
  const Filter* mitchell = FilterFind("mitchell");
  const float spline[] = {1.0f, 0.0f};
  mitchell->init(spline, mitchell->clientData);
  EXPECT_FLOAT_EQ(mitchell->kernel(0.0f, mitchell->clientData), 2.0f / 3.0f);
  const Filter* kaiser = FilterFind("kaiser");
  const float shape = 4.0f;
  kaiser->init(&shape, kaiser->clientData);
  EXPECT_NEAR(kaiser->kernel(1.0f, kaiser->clientData), 1.0 / std::cyl_bessel_i(0.0, 4.0), 1e-7);

  ProcessFilters().count = 0;
  mitchell = FilterFind("mitchell");
  EXPECT_FLOAT_EQ(mitchell->kernel(0.0f, mitchell->clientData), 8.0f / 9.0f);
  EXPECT_EQ(static_cast<const KaiserParameters*>(kaiser->clientData)->a, 6.5f);
}

TEST_F(Registry, SixteenMoreFiltersFitAndTheNextIsRefused) {
  std::vector<std::string> names;
  names.reserve(17);
  for (int i = 0; i < 17; ++i) names.push_back("extra" + std::to_string(i));
  const std::string whileFilling = ErrorsOf([&] {
    for (size_t i = 0; i < 16; ++i) filt_insert(Named(names[i].c_str()));
  });
  EXPECT_EQ(whileFilling, "");
  EXPECT_EQ(ProcessFilters().count, 30);
  EXPECT_EQ(FilterFind("extra15"), &ProcessFilters().rows[29]);
  EXPECT_EQ(ErrorsOf([&] { filt_insert(Named(names[16].c_str())); }),
            "filt_insert: too many filters: 31\n");
  EXPECT_EQ(ProcessFilters().count, 30);
  EXPECT_EQ(FilterFind("extra16"), nullptr);
  // The name is looked at first.
  EXPECT_EQ(ErrorsOf([] { filt_insert(Named("box")); }),
            "filt_insert: there's already a filter called box\n");
}

TEST_F(Registry, ANameThatIsTakenIsRefused) {
  EXPECT_EQ(ErrorsOf([] { filt_insert(Named("box")); }),
            "filt_insert: there's already a filter called box\n");
  EXPECT_EQ(ProcessFilters().count, 14);
  EXPECT_EQ(FilterFind("box")->kernel, KernelBox);
}

TEST_F(Registry, AnInsertedRowIsCopiedWhole) {
  double lobes = 3.0;
  const auto init = [](const float*, void*) {};
  const auto print = [](const void*) {};
  const Filter row = {"lanczos3", KernelSinc, 3.0f, 0.9f, 1, 1, 0, init, print, &lobes};
  filt_insert(row);
  const Filter* found = FilterFind("lanczos3");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name, row.name);
  EXPECT_EQ(found->kernel, KernelSinc);
  EXPECT_EQ(found->support, 3.0f);
  EXPECT_EQ(found->blur, 0.9f);
  EXPECT_EQ(found->windowedByDefault, 1);
  EXPECT_EQ(found->interpolating, 1);
  EXPECT_EQ(found->unitRange, 0);
  EXPECT_EQ(found->init, row.init);
  EXPECT_EQ(found->print, row.print);
  EXPECT_EQ(found->clientData, &lobes);
}

TEST_F(Registry, WindowingByBoxReturnsTheFilterItself) {
  const Filter* sinc = FilterFind("sinc");
  EXPECT_EQ(FilterWindow(sinc, "box"), sinc);
}

TEST_F(Registry, WindowingSincByHanningMultipliesTheTwo) {
  double lobes = 4.0;
  Filter sinc = *FilterFind("sinc");
  sinc.clientData = &lobes;
  const Filter* windowed = FilterWindow(&sinc, "hanning");
  ASSERT_NE(windowed, nullptr);
  EXPECT_STREQ(windowed->name, "sinc*hanning");
  EXPECT_EQ(windowed->support, 4.0f);
  EXPECT_EQ(windowed->blur, 1.0f);
  EXPECT_EQ(windowed->windowedByDefault, 1);
  EXPECT_EQ(windowed->interpolating, 1);
  EXPECT_EQ(windowed->unitRange, 0);
  EXPECT_EQ(windowed->init, nullptr);
  EXPECT_EQ(windowed->print, nullptr);
  for (const float x : Steps(-4.0f, 4.0f, 0.125f)) {
    EXPECT_EQ(windowed->kernel(x, windowed->clientData),
              KernelSinc(x, &lobes) * KernelHanning(x / 4.0f, nullptr));
  }
  EXPECT_EQ(ProcessFilters().count, 14);  // made, not registered
}

TEST_F(Registry, WindowedRowsPrintWhatBothPartsCanPrint) {
  const Filter* both = FilterWindow(FilterFind("mitchell"), "kaiser");
  EXPECT_EQ(ErrorsOf([&] { both->print(both->clientData); }),
            "mitchell: p0=0.888889 p2=-2 p3=1.16667 q0=1.77778 q1=-3.33333 q2=2 q3=-0.388889\n"
            "kaiser: a=6.5 i0a=0.00940797\n");
  const Filter* windowOnly = FilterWindow(FilterFind("sinc"), "kaiser");
  EXPECT_EQ(ErrorsOf([&] { windowOnly->print(windowOnly->clientData); }),
            "kaiser: a=6.5 i0a=0.00940797\n");
  const Filter* filterOnly = FilterWindow(FilterFind("mitchell"), "hanning");
  EXPECT_THAT(ErrorsOf([&] { filterOnly->print(filterOnly->clientData); }),
              HasSubstr("mitchell: p0="));
}

TEST_F(Registry, ALongWindowedNameIsCutTo49Bytes) {
  const std::string name(60, 'n');
  const Filter row = Named(name.c_str());
  EXPECT_EQ(FilterWindow(&row, "hanning")->name, std::string(49, 'n'));
}

TEST_F(Registry, WindowingByAnUnknownNameGivesNothing) {
  EXPECT_EQ(FilterWindow(FilterFind("sinc"), "welch"), nullptr);
}

TEST_F(Registry, AWindowedRowCanBeInsertedAndWindowedAgain) {
  filt_insert(*FilterWindow(FilterFind("triangle"), "hanning"));
  const Filter* twice = FilterWindow(FilterFind("triangle*hanning"), "hamming");
  ASSERT_NE(twice, nullptr);
  EXPECT_STREQ(twice->name, "triangle*hanning*hamming");
  EXPECT_EQ(twice->kernel(0.25f, twice->clientData), KernelTriangle(0.25f, nullptr) *
                                                         KernelHanning(0.25f, nullptr) *
                                                         KernelHamming(0.25f, nullptr));
}

TEST_F(Registry, CatalogPrintsEveryRowWithItsParameters) {
  EXPECT_EQ(ErrorsOf([] { FilterCatalog(); }),
            "point    \t0.00\n"
            "box      \t0.50\n"
            "triangle \t1.00\n"
            "quadratic\t1.50\n"
            "cubic    \t2.00\n"
            "catrom   \t2.00\n"
            "mitchell \t2.00\n    "
            "mitchell: p0=0.888889 p2=-2 p3=1.16667 q0=1.77778 q1=-3.33333 q2=2 q3=-0.388889\n"
            "\n"
            "gaussian \t1.25\n"
            "sinc     \t4.00 (windowed by default)\n"
            "bessel   \t3.24 (windowed by default)\n"
            "hanning  \t1.00\n"
            "hamming  \t1.00\n"
            "blackman \t1.00\n"
            "kaiser   \t1.00\n    "
            "kaiser: a=6.5 i0a=0.00940797\n"
            "\n");
}

}  // namespace
}  // namespace kelto
