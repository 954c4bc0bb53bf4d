// How loud sound is over time, as the editor draws it.
#include "host/film/sound_peaks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/base/error.h"
#include "tests/host/support/sounds.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

class SoundWaveform : public testing::Test {
 protected:
  test::TempFolder folder_;
  const std::string wav_ = folder_ / "sound.wav";
};

TEST_F(SoundWaveform, HasTheLargestSampleOfEachSpanOfAnyChannel) {
  // Half a second of silence, then one channel at a quarter and the other at half of full level.
  test::WriteWav(wav_, 1.0, 8000, 2, [](int channel, double seconds) {
    return seconds < 0.5 ? 0.0 : channel == 0 ? 0.25 : -0.5;
  });
  const std::vector<float> peaks = SoundPeaks(wav_, 10.0, 60.0);
  ASSERT_EQ(peaks.size(), 10u);
  for (size_t i = 0; i < 10; ++i) EXPECT_NEAR(peaks[i], i < 5 ? 0.0F : 0.5F, 0.001F) << i;
}

TEST_F(SoundWaveform, FindsASingleClick) {
  test::WriteWav(wav_, 2.0, 8000, 1, test::Clicks({1.234}, 8000));
  const std::vector<float> peaks = SoundPeaks(wav_, 50.0, 60.0);
  const auto loudest = std::max_element(peaks.begin(), peaks.end());
  EXPECT_EQ(loudest - peaks.begin(), 61);
  EXPECT_GT(*loudest, 0.99F);
}

TEST_F(SoundWaveform, EndsWhereItIsCut) {
  test::WriteWav(wav_, 3.0, 8000, 1, [](int, double) { return 0.5; });
  EXPECT_EQ(SoundPeaks(wav_, 10.0, 2.0).size(), 20u);
}

TEST_F(SoundWaveform, OfAFileWithoutSoundIsAnError) {
  EXPECT_THROW(SoundPeaks(folder_ / "no.wav", 10.0, 60.0), Error);
}

}  // namespace
}  // namespace kelto::host
