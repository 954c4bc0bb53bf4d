// How loud a file's sound is over time, for those who draw it.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// The largest amplitude, 0..1, of each of `perSecond` spans of a second, of any channel, from the
/// sound's beginning to its end or to `seconds`. Silence counts. Throws Error that names the file.
std::vector<float> SoundPeaks(const std::string& path, double perSecond, double seconds);

}  // namespace kelto::host
