// The times of a slideshow's pictures, from the length of its music.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace kelto::host {

/// Frames for which each picture is seen, fades included, in a film of `total` frames. Pictures
/// with a time of their own, in `given`, keep it; the others share what is left evenly, to within a
/// frame. `fades` says how long each picture fades into the next one, at most: no fade takes more
/// than half of a picture. Throws UsageError where the pictures do not fit, and where all have
/// times of their own.
std::vector<int32_t> FittedTimes(int64_t total, const std::vector<std::optional<int32_t>>& given,
                                 const std::vector<int32_t>& fades);

}  // namespace kelto::host
