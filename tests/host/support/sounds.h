// Sound for tests: written as WAV files, read back by the FFmpeg libraries.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kelto::test {

/// The level of a channel, -1..1, at a time in seconds.
using SoundFunction = std::function<double(int channel, double seconds)>;

/// 16-bit samples.
void WriteWav(const std::string& path, double seconds, int rate, int channels,
              const SoundFunction& sound);

/// Silence with one sample of full level at each of these times.
SoundFunction Clicks(const std::vector<double>& times, int rate);

struct DecodedSound {
  std::string codec;
  int rate = 0, channels = 0;
  double start = 0.0;           ///< seconds of the first sample
  std::vector<double> samples;  ///< the first channel
  double end = 0.0;             ///< seconds at which the last packet ends by the file's own account
  /// Where the sound is loudest between two times, in seconds.
  double LoudestBetween(double from, double to) const;
  double LevelAt(double seconds) const;
};

/// Decodes a file's sound. Fails the test when it has none.
DecodedSound ReadSound(const std::string& path);

}  // namespace kelto::test
