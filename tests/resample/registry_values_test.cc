// How far each built-in filter says that it reaches.
#include <gtest/gtest.h>

#include <utility>

#include "resample/registry.h"

namespace kelto {
namespace {

TEST(RegistryValues, EveryRowTellsItsSupportToTheLastDecimal) {
  const std::pair<const char*, float> supports[] = {
      {"point", 0.0f},    {"box", 0.5f},       {"triangle", 1.0f}, {"quadratic", 1.5f},
      {"cubic", 2.0f},    {"catrom", 2.0f},    {"mitchell", 2.0f}, {"gaussian", 1.25f},
      {"sinc", 4.0f},     {"bessel", 3.2383f}, {"hanning", 1.0f},  {"hamming", 1.0f},
      {"blackman", 1.0f}, {"kaiser", 1.0f},
  };
  const FilterRegistry filters = BuiltInFilters();
  size_t row = 0;
  for (const auto& [name, support] : supports) {
    EXPECT_STREQ(filters.rows[row].name, name);
    EXPECT_EQ(filters.rows[row].support, support) << name;
    ++row;
  }
}

}  // namespace
}  // namespace kelto
