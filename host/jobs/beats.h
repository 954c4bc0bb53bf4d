// The beats of music, and shows that are cut on them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelto::host {

struct Beats {
  std::vector<double> seconds{};  ///< when they are, rising
  /// How many a minute, by the usual time between two; 0 for fewer than two.
  double Tempo() const;
};

/// The beats that the program aubiotrack (Debian's package aubio-tools) finds in a file's sound. It
/// runs as a process of its own, outside of the sandbox, which this process must not have entered.
/// Throws UsageError where the program is not installed, and Error where it finds no beat.
Beats BeatsOf(const std::string& sound);

/// "96 beats, 120.0 a minute".
std::string TextOf(const Beats& beats);

/// Times of a show's pictures, in frames, like `times` but that each cut, the middle of a fade, is
/// on the beat that is nearest to where it was, as far as there is one within half of a picture's
/// time and every picture keeps a frame between its fades. The show stays as long as it is. `fades`
/// has one less; `begin` is the frame in which the first picture appears.
std::vector<int32_t> TimesOnBeats(const std::vector<int32_t>& times,
                                  const std::vector<int32_t>& fades, int32_t begin,
                                  const Beats& beats, double framesPerSecond);

}  // namespace kelto::host
