// The weights of a background colour's conversion, to their last decimal.
#include <gtest/gtest.h>

#include "resample/background.h"

namespace kelto {
namespace {

/// What one level of a primary adds to Y, Cb and Cr, in ten-thousandths.
struct Primary {
  int32_t channel, luma, cb, cr;
};

constexpr Primary kPrimaries[] = {
    {0, 2989, -1687, 5000},
    {1, 5866, -3312, -4183},
    {2, 1145, 5000, -816},
};

TEST(BackgroundValues, EveryLevelOfAPrimaryHasItsWeightsSumTruncated) {
  constexpr int32_t kMiddle = 1280000;
  for (const Primary& primary : kPrimaries) {
    for (int32_t level = 0; level < 256; ++level) {
      Background background;
      background.selector = 0;
      background.bytes[primary.channel] = static_cast<uint8_t>(level);
      const auto pattern = BackgroundPattern(background);
      ASSERT_EQ(pattern[0], primary.luma * level / 10000) << primary.channel << ": " << level;
      ASSERT_EQ(pattern[1], (kMiddle + primary.cb * level) / 10000) << primary.channel;
      ASSERT_EQ(pattern[2], pattern[0]);
      ASSERT_EQ(pattern[3], (kMiddle + primary.cr * level) / 10000) << primary.channel;
    }
  }
}

}  // namespace
}  // namespace kelto
