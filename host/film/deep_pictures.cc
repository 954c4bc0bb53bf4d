#include "host/film/deep_pictures.h"

#include <cstring>

#include "host/film/deep_frame.h"

namespace kelto::host {
namespace {

/// Samples of `Value` for each pixel, the first `channels` of four.
template <typename Value>
std::vector<uint8_t> Channels(const std::vector<Value>& rgba, size_t channels) {
  std::vector<uint8_t> samples(rgba.size() / 4 * channels * sizeof(Value));
  uint8_t* to = samples.data();
  for (size_t i = 0; i < rgba.size(); i += 4, to += channels * sizeof(Value)) {
    std::memcpy(to, &rgba[i], channels * sizeof(Value));
  }
  return samples;
}

}  // namespace

std::vector<uint8_t> SamplesOf(const FrameView& frame, PictureDepth depth) {
  const size_t channels = depth.alpha ? 4 : 3;
  return depth.bits == 8 ? Channels(StraightBytes(frame), channels)
                         : Channels(StraightWords(frame), channels);
}

}  // namespace kelto::host
